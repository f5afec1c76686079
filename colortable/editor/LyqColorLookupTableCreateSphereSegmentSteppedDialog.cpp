#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialog.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqMessageBox.h>
#include <lys_core/LyqSpinBox.h>

#include <QPointer>
#include <QPushButton>

LyqColorLookupTableCreateSphereSegmentSteppedDialog::LyqColorLookupTableCreateSphereSegmentSteppedDialog(
    QWidget* parent, const char* name, bool modal, unsigned int flags)
    : LyqColorLookupTableCreateSphereSegmentSteppedDialogUI(parent, name, modal, flags) {
    const double degrees[] = {0.0, 90.0, 15.0};
    LyqSpinBox* const boxes[] = {mFromSpinBox, mToSpinBox, mStepSpinBox};
    for (int i = 0; i < 3; ++i) {
        lys::editor::prepareAngleBox(*boxes[i], degrees[i]);
    }
    mRefused = new lys::editor::RefusedNumbers(*this, {mFromSpinBox, mToSpinBox, mStepSpinBox});
    connect(mOkPushButton, &QPushButton::clicked, this,
            &LyqColorLookupTableCreateSphereSegmentSteppedDialog::applySlot);
    connect(mCancelPushButton, &QPushButton::clicked, this, &QDialog::reject);
}

LyqColorLookupTableCreateSphereSegmentSteppedDialog::~LyqColorLookupTableCreateSphereSegmentSteppedDialog() = default;

void LyqColorLookupTableCreateSphereSegmentSteppedDialog::setTable(LyrObject* table) {
    mTable = LyrObjectPtr(table);
    mRefused->forget();
}

void LyqColorLookupTableCreateSphereSegmentSteppedDialog::applySlot() {
    if (!mTable) {
        reject();
        return;
    }
    if (mRefused->tell(tr("Invalid parameters"))) {
        return;
    }
    const float from = lys::editor::enteredValue(*mFromSpinBox);
    const float to = lys::editor::enteredValue(*mToSpinBox);
    const float step = lys::editor::enteredValue(*mStepSpinBox);
    const Lyrenum type = lys::editor::schemeOf(mTypeComboBox->currentIndex());
    const QPointer<QDialog> self = this;
    const LyqApplication::UserActionScope action(tr("Create stepped colortable"));
    if (!LyrColorLookupTable::createSphereSegmentStepped(mTable.get(), from, to, step, type)) {
        LyqMessageBox::warning(this, tr("Invalid parameters"),
                               tr("Could not create lookup table.\nInvalid parameters given."));
    }
    if (!self) {
        return;
    }
    // Refused parameters close the dialog as well: to its caller it has been accepted.
    accept();
}
