// The creation dialogs of LyqColorLookupTableEditor.
#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <colortable/editor/LyqColorLookupTableEditor_p.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqSpinBox.h>
#include <lys_core/LyrApplicationObject.h>

using lys::editor::enteredValue;

namespace {

/** What the dialogs were given as widget flags in the toolkit's 3.3 series. */
constexpr unsigned int DIALOG_FLAGS = 2050;

void setScheme(LyqComboBox& box, Lyrenum type) {
    const int index = lys::editor::indexOfScheme(type);
    if (index >= 0) {
        box.setCurrentIndex(index);
    }
}

template <class Dialog>
bool readStepParams(Dialog* dialog, float& from, float& to, float& step, Lyrenum& type) {
    if (!dialog) {
        return false;
    }
    from = enteredValue(*dialog->mFromSpinBox);
    to = enteredValue(*dialog->mToSpinBox);
    step = enteredValue(*dialog->mStepSpinBox);
    type = lys::editor::schemeOf(dialog->mTypeComboBox->currentIndex());
    return true;
}

template <class Dialog>
void writeStepParams(Dialog* dialog, float from, float to, float step, Lyrenum type) {
    if (dialog) {
        dialog->mFromSpinBox->setValue(from);
        dialog->mToSpinBox->setValue(to);
        dialog->mStepSpinBox->setValue(step);
        setScheme(*dialog->mTypeComboBox, type);
    }
}

enum class Outcome { Gone, Accepted, Rejected };

/** Runs a dialog on a table; its editor and itself may go meanwhile. */
template <class Dialog>
Outcome run(const QWidget* editor, QGuardedPtr<Dialog> dialog, LyrObject* table) {
    const QGuardedPtr<const QWidget> alive = editor;
    if (dialog) {
        dialog->setTable(table);
    }
    const int result = dialog ? dialog->exec() : int(QDialog::Rejected);
    return !alive ? Outcome::Gone : result == QDialog::Accepted ? Outcome::Accepted : Outcome::Rejected;
}

}  // namespace

LyqColorLookupTableEditor::Private::Private(LyqColorLookupTableEditor& editor)
    : application(&editor, &LyqApplication::instance().displayUnits()),
      table(&editor),
      stepped(new LyqColorLookupTableCreateSteppedDialog(&editor, nullptr, true, DIALOG_FLAGS)),
      sphereSegment(new LyqColorLookupTableCreateSphereSegmentSteppedDialog(&editor, nullptr, true, DIALOG_FLAGS)),
      smooth(new LyqColorLookupTableCreateSmoothDialog(&editor, nullptr, true, DIALOG_FLAGS)) {}

bool LyqColorLookupTableEditor::getCreateSmoothParams(float& from, float& to, Lyrenum& type) const {
    if (!d->smooth) {
        return false;
    }
    from = enteredValue(*d->smooth->mFromSpinBox);
    to = enteredValue(*d->smooth->mToSpinBox);
    type = lys::editor::schemeOf(d->smooth->mTypeComboBox->currentIndex());
    return true;
}

bool LyqColorLookupTableEditor::getCreateSteppedParams(float& from, float& to, float& step, Lyrenum& type) const {
    return readStepParams(d->stepped.data(), from, to, step, type);
}

bool LyqColorLookupTableEditor::getCreateSphereSegmentSteppedParams(float& from, float& to, float& step,
                                                                    Lyrenum& type) const {
    return readStepParams(d->sphereSegment.data(), from, to, step, type);
}

void LyqColorLookupTableEditor::setCreateSmoothParams(float from, float to, Lyrenum type) {
    if (d->smooth) {
        d->smooth->mFromSpinBox->setValue(from);
        d->smooth->mToSpinBox->setValue(to);
        setScheme(*d->smooth->mTypeComboBox, type);
    }
}

void LyqColorLookupTableEditor::setCreateSteppedParams(float from, float to, float step, Lyrenum type) {
    writeStepParams(d->stepped.data(), from, to, step, type);
}

void LyqColorLookupTableEditor::setCreateSphereSegmentSteppedParams(float from, float to, float step, Lyrenum type) {
    writeStepParams(d->sphereSegment.data(), from, to, step, type);
}

void LyqColorLookupTableEditor::createSmoothSlot() {
    if (!d->smooth) {
        return;
    }
    d->smooth->setEnabled(true);
    createSmoothStart();
    const Outcome outcome = run(this, d->smooth, d->table.get());
    if (outcome == Outcome::Accepted) {
        createSmoothEnd();
    } else if (outcome == Outcome::Rejected) {
        createSmoothAbort();
    }
}

void LyqColorLookupTableEditor::createSteppedSlot() {
    if (!d->stepped) {
        return;
    }
    d->stepped->setEnabled(true);
    createSteppedStart();
    const Outcome outcome = run(this, d->stepped, d->table.get());
    if (outcome == Outcome::Accepted) {
        createSteppedEnd();
    } else if (outcome == Outcome::Rejected) {
        createSteppedAbort();
    }
}

void LyqColorLookupTableEditor::createSphereSegmentSteppedSlot() {
    if (!d->sphereSegment) {
        return;
    }
    d->sphereSegment->setEnabled(true);
    createSphereSegmentSteppedStart();
    const Outcome outcome = run(this, d->sphereSegment, d->table.get());
    if (outcome == Outcome::Accepted) {
        createSphereSegmentSteppedEnd();
    } else if (outcome == Outcome::Rejected) {
        createSphereSegmentSteppedAbort();
    }
}

void LyqColorLookupTableEditor::createSmoothStart() {}
void LyqColorLookupTableEditor::createSmoothEnd() {}
void LyqColorLookupTableEditor::createSmoothAbort() {}
void LyqColorLookupTableEditor::createSteppedStart() {}
void LyqColorLookupTableEditor::createSteppedEnd() {}
void LyqColorLookupTableEditor::createSteppedAbort() {}
void LyqColorLookupTableEditor::createSphereSegmentSteppedStart() {}
void LyqColorLookupTableEditor::createSphereSegmentSteppedEnd() {}
void LyqColorLookupTableEditor::createSphereSegmentSteppedAbort() {}
