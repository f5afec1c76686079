#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/editor/LyqColorLookupTableEditorUI.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrInterval.h>
#include <lyr_core/Lyrenum.h>

#include <QPoint>

#include <memory>

class LyrObject;
class LyqColorLookupTableCreateSmoothDialog;
class LyqColorLookupTableCreateSphereSegmentSteppedDialog;
class LyqColorLookupTableCreateSteppedDialog;

/** The panel in which a user edits one colour lookup table: a preview, a table with a row for each section, switches,
 * and dialogs that build the table anew. Every edit is one named undo step.
 *
 *  It does not own the table. Changes, wherever they come from, only mark the panel out of date; it is brought up to
 * date when it is painted next. A cell that is being edited stays as the user has it until then. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableEditor : public LyqColorLookupTableEditorUI, public LyrIOC {
    Q_OBJECT

public:
    /** The flags are a number of the toolkit's 3.3 series; the editor is an ordinary widget whatever they are. */
    explicit LyqColorLookupTableEditor(QWidget* parent = nullptr, const char* name = nullptr, unsigned int flags = 0);
    ~LyqColorLookupTableEditor() override;

    /** The table to edit, null for none. */
    void setLogicObject(LyrObject* object);

    /** What the fields of a creation dialog hold, in internal units. False, and nothing read, if the dialog is gone. */
    bool getCreateSmoothParams(float& from, float& to, Lyrenum& type) const;
    bool getCreateSteppedParams(float& from, float& to, float& step, Lyrenum& type) const;
    bool getCreateSphereSegmentSteppedParams(float& from, float& to, float& step, Lyrenum& type) const;

    /** Presets the fields of a creation dialog. A scheme that is not on offer leaves the choice as it is. */
    void setCreateSmoothParams(float from, float to, Lyrenum type);
    void setCreateSteppedParams(float from, float to, float step, Lyrenum type);
    void setCreateSphereSegmentSteppedParams(float from, float to, float step, Lyrenum type);

    bool eventFilter(QObject* watched, QEvent* event) override;
    bool iocCallback(Message& message) override;

public Q_SLOTS:
    void autoLabelToggledSlot();
    void autoScaleToggledSlot();
    void tableValueChangedSlot(int row, int col);
    /** The position is that of the table's viewport. */
    void tableDoubleClickedSlot(int row, int col, int button, const QPoint& position);
    void tableContextMenuRequestedSlot(int row, int col, const QPoint& globalPosition);
    void createSmoothSlot();
    void createSteppedSlot();
    void createSphereSegmentSteppedSlot();

protected:
    /** For derived panels: called before a creation dialog is shown, after it was accepted, and after it was not. */
    virtual void createSmoothStart();
    virtual void createSmoothEnd();
    virtual void createSmoothAbort();
    virtual void createSteppedStart();
    virtual void createSteppedEnd();
    virtual void createSteppedAbort();
    virtual void createSphereSegmentSteppedStart();
    virtual void createSphereSegmentSteppedEnd();
    virtual void createSphereSegmentSteppedAbort();

    /** Brings the panel up to date with the table; called only when it is not. */
    virtual void doSync();

    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Private;
    class WriteLock;
    using SectionRange = LyrInterval<long long, long long>;

    void connectAll();
    bool needsSync() const;
    void sync();
    void invalidate();

    LyrObject* getSectionForRow(long long row) const;
    SectionRange getSelectedSections() const;
    SectionRange getSelectedInternalSections() const;
    void actionMerge(const SectionRange& sections);
    void actionSplit(long long row);

    void editBound(int row, int col);
    void editType(int row);
    void refuse(int row, int col, const QString& reason);
    void writeSwitch(Lyrenum property, bool on, const QString& actionName);
    bool isStillEdited(const LyrObject* table, const LyrObject* section) const;
    bool isLeftOfCentre(int row, const QPoint& position) const;
    bool editColorPoint(LyrObject& section, long long index);
    void editOpacity(LyrObject& section);

    std::unique_ptr<Private> d;
};
