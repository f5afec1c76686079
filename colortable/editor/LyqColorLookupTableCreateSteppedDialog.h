#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialogUI.h>
#include <lyr_core/LyrObjectPtr.h>

namespace lys::editor {
class RefusedNumbers;
}

/** Asks for range, step and colour scheme of a table with equal steps, and builds it. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableCreateSteppedDialog : public LyqColorLookupTableCreateSteppedDialogUI {
    Q_OBJECT

public:
    explicit LyqColorLookupTableCreateSteppedDialog(QWidget* parent = nullptr, const char* name = nullptr,
                                                    bool modal = false, unsigned int flags = 0);
    ~LyqColorLookupTableCreateSteppedDialog() override;

    /** The table that is rebuilt, null for none. The fields keep their values, brought between the table's limits. */
    void setTable(LyrObject* table);

public Q_SLOTS:
    /** Rebuilds the table in one undo step and closes the dialog, warning of parameters that the generator refuses.
     * Without a table the dialog is rejected. A number that a field just refused is told, and nothing is built. */
    void applySlot();

private:
    LyrObjectPtr mTable;
    lys::editor::RefusedNumbers* mRefused = nullptr;
};
