#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>

#include <QGroupBox>
#include <QTimer>

#include <memory>

class HistogramView;
class LyqColorLookupTableWidget;
class LyrColoredLayer;
class QTableView;
class SectionShareModel;
class ValueOrder;

/** How the values of a layer are spread over the sections of its table: a histogram with the table's boundaries, and
 * the share of the volume in each section. Both follow the table while it is edited. A section under the mouse
 * stands out in every view. */
class LYS_ANALYSIS_EXPORT SectionInspector : public QGroupBox, public LyrIOC {
    Q_OBJECT

public:
    explicit SectionInspector(QWidget* parent);
    ~SectionInspector() override;

    /** Shows a layer, null for none; it may go at any time. */
    void setLayer(LyrColoredLayer* layer);

    /** Has the sections of a colour bar of the same table answer the mouse, too. */
    void watch(LyqColorLookupTableWidget* bar);

    bool eventFilter(QObject* watched, QEvent* event) override;
    bool iocCallback(Message& message) override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    LyrColoredLayer* layer() const;
    void setTexts();
    void refresh();
    void highlight(int section);
    int sectionOfBar(int y) const;

    LyrObjectIOCPtr mLayer;
    LyrObjectIOCPtr mTable;
    std::shared_ptr<ValueOrder> mOrder;
    HistogramView* mHistogram;
    SectionShareModel* mShares;
    QTableView* mList;
    LyqColorLookupTableWidget* mBar = nullptr;
    QTimer mRefresh;  ///< gathers what changes at once
};
