#pragma once

#include <analysis/HistogramLayout.h>
#include <analysis/LysAnalysisExport.h>

#include <QColor>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

/** Shows how values are spread, each bar in the colour that a table gives its values, with the table's boundaries over
 * the bars. */
class LYS_ANALYSIS_EXPORT HistogramView : public QWidget {
    Q_OBJECT

public:
    /** The colour of a value; an invalid one for a value without. */
    using Coloring = std::function<QColor(float value)>;

    explicit HistogramView(QWidget* parent);
    ~HistogramView() override;

    /** Null for none; the message stands in their place. */
    void setValues(std::shared_ptr<const LyrSortedValues> values, const QString& message);
    /** @param boundaries  ascending; without any, no section is hovered over */
    void setTable(std::vector<float> boundaries, Coloring coloring);

    const HistogramLayout& layoutOfBars() const { return mLayout; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /** The mouse is over a section now, or over none (-1). */
    void sectionHovered(int section);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void layOut();

    std::shared_ptr<const LyrSortedValues> mValues;
    QString mMessage;
    std::vector<float> mBoundaries;
    Coloring mColoring;
    HistogramLayout mLayout;
    std::vector<QColor> mColors;  ///< of each bar
};
