#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialogUI.h>
#include <lyr_core/LyrObjectPtr.h>

namespace lys::editor {
class RefusedNumbers;
}

/** Asks for range, step and colour scheme of a table over angles, whose steps are zones of equal area on a sphere, and
 * builds it. Angles are shown in degrees. Values read from the fields are radians. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableCreateSphereSegmentSteppedDialog
    : public LyqColorLookupTableCreateSphereSegmentSteppedDialogUI {
    Q_OBJECT

public:
    explicit LyqColorLookupTableCreateSphereSegmentSteppedDialog(QWidget* parent = nullptr, const char* name = nullptr,
                                                                 bool modal = false, unsigned int flags = 0);
    ~LyqColorLookupTableCreateSphereSegmentSteppedDialog() override;

    /** The table that is rebuilt, null for none. The fields keep their values. */
    void setTable(LyrObject* table);

public Q_SLOTS:
    /** Rebuilds the table in one undo step and closes the dialog, warning of parameters that the generator refuses.
     * Without a table the dialog is rejected. A number that a field just refused is told, and nothing is built. */
    void applySlot();

private:
    LyrObjectPtr mTable;
    lys::editor::RefusedNumbers* mRefused = nullptr;
};
