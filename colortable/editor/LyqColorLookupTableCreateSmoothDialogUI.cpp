#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableCreateSmoothDialogUI.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqSpinBox.h>

#include <QEvent>
#include <QLabel>
#include <QPushButton>

using lys::editor::named;

LyqColorLookupTableCreateSmoothDialogUI::LyqColorLookupTableCreateSmoothDialogUI(QWidget* parent, const char* name,
                                                                                 bool modal, unsigned int flags)
    : QDialog(parent),
      mHeadingLabel(named(new QLabel(this), "mHeadingLabel")),
      mFromLabel(named(new QLabel(this), "mFromLabel")),
      mFromSpinBox(named(new LyqSpinBox(this), "mFromSpinBox")),
      mToLabel(named(new QLabel(this), "mToLabel")),
      mToSpinBox(named(new LyqSpinBox(this), "mToSpinBox")),
      mTypeLabel(named(new QLabel(this), "mTypeLabel")),
      mTypeComboBox(named(new LyqComboBox(this), "mTypeComboBox")),
      mOkPushButton(named(new QPushButton(this), "mOkPushButton")),
      mCancelPushButton(named(new QPushButton(this), "mCancelPushButton")) {
    lys::editor::prepareDialog(*this, name, modal, flags);
    const lys::editor::FormRows rows{{mFromLabel, mFromSpinBox}, {mToLabel, mToSpinBox}, {mTypeLabel, mTypeComboBox}};
    lys::editor::layOutForm(*this, mHeadingLabel, rows, mOkPushButton, mCancelPushButton);
    LyqColorLookupTableCreateSmoothDialogUI::languageChange();
}

void LyqColorLookupTableCreateSmoothDialogUI::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        languageChange();
    }
}

void LyqColorLookupTableCreateSmoothDialogUI::languageChange() {
    setWindowTitle(tr("Create smooth table"));
    mHeadingLabel->setText(tr("Create continuous lookup-table with"));
    mFromLabel->setText(tr("from"));
    mToLabel->setText(tr("to"));
    mTypeLabel->setText(tr("type"));
    mTypeComboBox->setItems({tr("Rainbow"), tr("Reverse Rainbow"), tr("Hue Cycle")});
    mOkPushButton->setText(tr("Ok"));
    mCancelPushButton->setText(tr("Cancel"));
}
