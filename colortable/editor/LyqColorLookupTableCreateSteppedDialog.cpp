#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableCreateSteppedDialog.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqMessageBox.h>
#include <lys_core/LyqSpinBox.h>

#include <QPointer>
#include <QPushButton>

#include <limits>

LyqColorLookupTableCreateSteppedDialog::LyqColorLookupTableCreateSteppedDialog(QWidget* parent, const char* name,
                                                                               bool modal, unsigned int flags)
    : LyqColorLookupTableCreateSteppedDialogUI(parent, name, modal, flags) {
    for (LyqSpinBox* box : {mFromSpinBox, mToSpinBox}) {
        lys::editor::prepareSpinBox(*box, Lyr::Length, -std::numeric_limits<float>::max());
    }
    lys::editor::prepareSpinBox(*mStepSpinBox, Lyr::Length, 0.0);
    mRefused = new lys::editor::RefusedNumbers(*this, {mFromSpinBox, mToSpinBox, mStepSpinBox});
    connect(mOkPushButton, &QPushButton::clicked, this, &LyqColorLookupTableCreateSteppedDialog::applySlot);
    connect(mCancelPushButton, &QPushButton::clicked, this, &QDialog::reject);
}

LyqColorLookupTableCreateSteppedDialog::~LyqColorLookupTableCreateSteppedDialog() = default;

void LyqColorLookupTableCreateSteppedDialog::setTable(LyrObject* table) {
    mTable = LyrObjectPtr(table);
    mRefused->forget();
    for (LyqSpinBox* box : {mFromSpinBox, mToSpinBox}) {
        box->setQuantity(lys::editor::quantityOf(table));
        lys::editor::limitToMaximumRange(*box, table);
    }
    mStepSpinBox->setQuantity(lys::editor::quantityOf(table));
}

void LyqColorLookupTableCreateSteppedDialog::applySlot() {
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
    if (!LyrColorLookupTable::createStepped(mTable.get(), from, to, step, type)) {
        LyqMessageBox::warning(this, tr("Invalid parameters"),
                               tr("Could not create lookup table.\nInvalid parameters given."));
    }
    if (!self) {
        return;
    }
    // Refused parameters close the dialog as well: to its caller it has been accepted.
    accept();
}
