#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrValuePair.h>

#include <QWidget>

#include <memory>

class LyrObject;

/** Edits what belongs to a colour lookup table as a whole: the quantity of its values, whether values beyond the range
 * are black, and the range that boundaries may be given in; and stretches the table over the data. Each is one undo
 * step. A text that is no number, or no limit, is refused: the panel says why and shows the old one. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableOptionsWidget : public QWidget, public LyrIOC {
    Q_OBJECT

public:
    explicit LyqColorLookupTableOptionsWidget(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqColorLookupTableOptionsWidget() override;

    /** The table to edit; null for none. */
    void setTable(LyrObject* table);
    LyrObject* getTable() const;

    /** The least and the greatest value of the data, in the internal unit. The table can be fitted to them if they are
     * finite and the least is below the greatest. */
    void setDataRange(const LyrValuePair<float>& range);
    LyrValuePair<float> getDataRange() const;

    bool iocCallback(Message& message) override;

public Q_SLOTS:
    /** Moves the boundaries linearly so that the first and the last become the ends of the data's range, or of that
     * part of it in which boundaries may lie. */
    void fitToData();

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    enum Side { LOWER, UPPER };
    struct Private;
    void buildForm();
    void connectControls();
    void languageChange();
    void sync();
    QString limitText(Side side) const;
    void takeQuantity(int index);
    void takeFiniteMode();
    void takeLimit(Side side);
    QString reasonToRefuseLimit(Side side, const QString& text, LyrValuePair<float>& range) const;

    std::unique_ptr<Private> d;
};
