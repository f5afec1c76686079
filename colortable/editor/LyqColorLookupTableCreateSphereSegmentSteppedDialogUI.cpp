#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableCreateSphereSegmentSteppedDialogUI.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqSpinBox.h>

#include <QEvent>
#include <QLabel>
#include <QPushButton>

using lys::editor::named;

LyqColorLookupTableCreateSphereSegmentSteppedDialogUI::LyqColorLookupTableCreateSphereSegmentSteppedDialogUI(
    QWidget* parent, const char* name, bool modal, unsigned int flags)
    : QDialog(parent),
      mHeadingLabel(named(new QLabel(this), "mHeadingLabel")),
      mFromLabel(named(new QLabel(this), "mFromLabel")),
      mFromSpinBox(named(new LyqSpinBox(this), "mFromSpinBox")),
      mToLabel(named(new QLabel(this), "mToLabel")),
      mToSpinBox(named(new LyqSpinBox(this), "mToSpinBox")),
      mStepLabel(named(new QLabel(this), "mStepLabel")),
      mStepSpinBox(named(new LyqSpinBox(this), "mStepSpinBox")),
      mTypeLabel(named(new QLabel(this), "mTypeLabel")),
      mTypeComboBox(named(new LyqComboBox(this), "mTypeComboBox")),
      mOkPushButton(named(new QPushButton(this), "mOkPushButton")),
      mCancelPushButton(named(new QPushButton(this), "mCancelPushButton")) {
    lys::editor::prepareDialog(*this, name, modal, flags);
    const lys::editor::FormRows rows{
        {mFromLabel, mFromSpinBox}, {mToLabel, mToSpinBox}, {mStepLabel, mStepSpinBox}, {mTypeLabel, mTypeComboBox}};
    lys::editor::layOutForm(*this, mHeadingLabel, rows, mOkPushButton, mCancelPushButton);
    LyqColorLookupTableCreateSphereSegmentSteppedDialogUI::languageChange();
}

void LyqColorLookupTableCreateSphereSegmentSteppedDialogUI::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        languageChange();
    }
}

void LyqColorLookupTableCreateSphereSegmentSteppedDialogUI::languageChange() {
    setWindowTitle(tr("Create stepped table"));
    mHeadingLabel->setText(tr("Create stepped lookup-table with"));
    mFromLabel->setText(tr("from"));
    mToLabel->setText(tr("to"));
    mStepLabel->setText(tr("step"));
    mTypeLabel->setText(tr("type"));
    mTypeComboBox->setItems({tr("Rainbow"), tr("Reverse Rainbow"), tr("Hue Cycle")});
    mOkPushButton->setText(tr("Ok"));
    mCancelPushButton->setText(tr("Cancel"));
}
