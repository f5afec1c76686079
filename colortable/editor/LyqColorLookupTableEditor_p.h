#pragma once

#include <colortable/editor/LyqColorLookupTableCreateSmoothDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialog.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <colortable/editor/SectionRows_p.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrTimestamp.h>
#include <lys_core/LyqUnitConverter.h>
#include <toolkit/QGuardedPtr.h>
#include <toolkit/QTable.h>

struct LyqColorLookupTableEditor::Private {
    explicit Private(LyqColorLookupTableEditor& editor);

    LyrTimestamp lastSync;  ///< null: out of date
    LyrObjectIOCPtr application;
    LyrObjectIOCPtr table;
    bool locked = false;
    LyqUnitConverter converter{Lyr::Length};
    LyqColorLookupTableWidget* colorBar = nullptr;
    // Guarded: a host may delete them.
    QGuardedPtr<LyqColorLookupTableCreateSteppedDialog> stepped;
    QGuardedPtr<LyqColorLookupTableCreateSphereSegmentSteppedDialog> sphereSegment;
    QGuardedPtr<LyqColorLookupTableCreateSmoothDialog> smooth;
};

/** While the editor writes, it is not brought up to date. */
class LyqColorLookupTableEditor::WriteLock {
public:
    explicit WriteLock(LyqColorLookupTableEditor& editor) : mLocked(editor.d->locked) { mLocked = true; }
    ~WriteLock() { mLocked = false; }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

private:
    bool& mLocked;
};
