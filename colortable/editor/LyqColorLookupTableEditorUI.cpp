#include <colortable/editor/CreateDialogForm_p.h>
#include <colortable/editor/LyqColorLookupTableEditorUI.h>
#include <lys_core/LyqColorWidget.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqPresetComboBox.h>
#include <toolkit/QTable.h>

#include <QCheckBox>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using lys::editor::named;

LyqColorLookupTableEditorUI::LyqColorLookupTableEditorUI(QWidget* parent, const char* name) : QWidget(parent) {
    setObjectName(QString::fromUtf8(name));
    mLUTGroupBox = named(new QGroupBox(this), "mLUTGroupBox");
    mLUTFrame = named(new QFrame(mLUTGroupBox), "mLUTFrame");
    (new QVBoxLayout(mLUTGroupBox))->addWidget(mLUTFrame);
    makeSections();
    makeSettings();
    makeSpecials();
    auto* column = new QVBoxLayout(this);
    column->addWidget(mLUTGroupBox, 1);
    column->addWidget(mSectionsGroupBox, 2);
    for (QWidget* group : {mAutoLabelGroupBox, mPresetGroupBox, mSpecialGroupBox}) {
        column->addWidget(group);
    }
    LyqColorLookupTableEditorUI::languageChange();
}

void LyqColorLookupTableEditorUI::makeSections() {
    mSectionsGroupBox = named(new QGroupBox(this), "mSectionsGroupBox");
    mSectionsTable = new QTable(mSectionsGroupBox, "mSectionsTable");
    mSectionsTable->setNumCols(4);
    mSectionsTable->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
    // Whole rows are selected: bold column labels would tell nothing and take more room.
    mSectionsTable->horizontalHeader()->setHighlightSections(false);
    mCreateSmoothPushButton = named(new QPushButton(mSectionsGroupBox), "mCreateSmoothPushButton");
    mCreateSteppedPushButton = named(new QPushButton(mSectionsGroupBox), "mCreateSteppedPushButton");
    mCreateSphereSegmentSteppedPushButton =
        named(new QPushButton(mSectionsGroupBox), "mCreateSphereSegmentSteppedPushButton");
    auto* column = new QVBoxLayout(mSectionsGroupBox);
    column->addWidget(mSectionsTable);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(mCreateSmoothPushButton);
    buttons->addWidget(mCreateSteppedPushButton);
    column->addLayout(buttons);
    column->addWidget(mCreateSphereSegmentSteppedPushButton);
}

void LyqColorLookupTableEditorUI::makeSettings() {
    mAutoLabelGroupBox = named(new QGroupBox(this), "mAutoLabelGroupBox");
    mAutoLabelCheckBox = named(new QCheckBox(mAutoLabelGroupBox), "mAutoLabelCheckBox");
    mAutoScaleCheckBox = named(new QCheckBox(mAutoLabelGroupBox), "mAutoScaleCheckBox");
    mAutoScalePushButton = named(new QPushButton(mAutoLabelGroupBox), "mAutoScalePushButton");
    mCustomCheckBox = named(new QCheckBox(mAutoLabelGroupBox), "mCustomCheckBox");
    auto* column = new QVBoxLayout;
    mAutoLabelGroupBox->setLayout(column);
    for (QWidget* widget : std::initializer_list<QWidget*>{mAutoLabelCheckBox, mAutoScaleCheckBox, mAutoScalePushButton,
                                                           mCustomCheckBox}) {
        // At their own width: what can be clicked of a check box is its text.
        column->addWidget(widget, 0, Qt::AlignLeft);
    }
    mPresetGroupBox = named(new QGroupBox(this), "mPresetGroupBox");
    mPresetComboBox = new LyqPresetComboBox(mPresetGroupBox, "mPresetComboBox");
    (new QVBoxLayout(mPresetGroupBox))->addWidget(mPresetComboBox);
}

void LyqColorLookupTableEditorUI::makeSpecials() {
    mSpecialGroupBox = named(new QGroupBox(this), "mSpecialGroupBox");
    mSpecialOptionsGroupBox = named(new QGroupBox(mSpecialGroupBox), "mSpecialOptionsGroupBox");
    mSpecialColorsGroupBox = named(new QGroupBox(mSpecialGroupBox), "mSpecialColorsGroupBox");
    auto* options = new QGridLayout(mSpecialOptionsGroupBox);
    auto* colors = new QGridLayout(mSpecialColorsGroupBox);
    QLabel** const optionLabels[] = {&mSpecialOption0Label, &mSpecialOption1Label, &mSpecialOption2Label,
                                     &mSpecialOption3Label};
    LyqComboBox** const boxes[] = {&mSpecialOption0ComboBox, &mSpecialOption1ComboBox, &mSpecialOption2ComboBox,
                                   &mSpecialOption3ComboBox};
    QLabel** const colorLabels[] = {&mSpecialColor0Label, &mSpecialColor1Label, &mSpecialColor2Label,
                                    &mSpecialColor3Label};
    LyqColorWidget** const widgets[] = {&mSpecialColor0Widget, &mSpecialColor1Widget, &mSpecialColor2Widget,
                                        &mSpecialColor3Widget};
    for (int i = 0; i < SPECIAL_COUNT; ++i) {
        const QByteArray number = QByteArray::number(i);
        *optionLabels[i] = named(new QLabel(mSpecialOptionsGroupBox), "mSpecialOption" + number + "Label");
        *boxes[i] = new LyqComboBox(mSpecialOptionsGroupBox, "mSpecialOption" + number + "ComboBox");
        options->addWidget(*optionLabels[i], i, 0);
        options->addWidget(*boxes[i], i, 1);
        *colorLabels[i] = named(new QLabel(mSpecialColorsGroupBox), "mSpecialColor" + number + "Label");
        *widgets[i] = new LyqColorWidget(mSpecialColorsGroupBox, "mSpecialColor" + number + "Widget");
        colors->addWidget(*colorLabels[i], i, 0);
        colors->addWidget(*widgets[i], i, 1);
    }
    mSpecialAction0PushButton = named(new QPushButton(mSpecialGroupBox), "mSpecialAction0PushButton");
    auto* column = new QVBoxLayout(mSpecialGroupBox);
    column->addWidget(mSpecialOptionsGroupBox);
    column->addWidget(mSpecialColorsGroupBox);
    column->addWidget(mSpecialAction0PushButton);
    // Nothing is to be seen of it before a derived editor fills it.
    mSpecialGroupBox->hide();
}

void LyqColorLookupTableEditorUI::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        languageChange();
    }
}

void LyqColorLookupTableEditorUI::languageChange() {
    mLUTGroupBox->setTitle(tr("LUT"));
    mSectionsGroupBox->setTitle(tr("Sections"));
    mSectionsTable->setColumnLabels({tr("From"), tr("To"), tr("Type"), tr("Detail")});
    mSectionsTable->horizontalHeaderItem(3)->setToolTip(tr(
        "Double click to change a color, or press Return. Of a gradient, the left half (Return) is its start and the "
        "right half (Shift+Return) its end."));
    mCreateSmoothPushButton->setText(tr("Create smooth"));
    mCreateSteppedPushButton->setText(tr("Create stepped"));
    mCreateSphereSegmentSteppedPushButton->setText(tr("Create stepped (equi-surface)"));
    mAutoLabelGroupBox->setTitle(tr("LUT"));
    mAutoLabelCheckBox->setText(tr("Auto tickmarks"));
    mAutoScaleCheckBox->setText(tr("Auto scale"));
    mAutoScalePushButton->setText(tr("Auto scale"));
    mCustomCheckBox->setText(tr("checkBox3"));
    mPresetGroupBox->setTitle(tr("Preset selection"));
    setSpecialTexts();
}

void LyqColorLookupTableEditorUI::setSpecialTexts() {
    mSpecialOptionsGroupBox->setTitle(tr("<special_options>"));
    mSpecialOption0Label->setText(tr("<opt0>"));
    mSpecialOption1Label->setText(tr("<opt1>"));
    mSpecialOption2Label->setText(tr("<opt2>"));
    mSpecialOption3Label->setText(tr("<opt3>"));
    mSpecialOption0ComboBox->setItems({tr("<opt0_a>")});
    mSpecialOption1ComboBox->setItems({tr("<opt1_a>")});
    mSpecialOption2ComboBox->setItems({tr("<opt2_a>")});
    mSpecialOption3ComboBox->setItems({tr("<opt3_a>")});
    mSpecialColorsGroupBox->setTitle(tr("<special_colors>"));
    mSpecialColor0Label->setText(tr("<col0>"));
    mSpecialColor1Label->setText(tr("<col1>"));
    mSpecialColor2Label->setText(tr("<col2>"));
    mSpecialColor3Label->setText(tr("<col3>"));
    mSpecialAction0PushButton->setText(tr("<act0>"));
}
