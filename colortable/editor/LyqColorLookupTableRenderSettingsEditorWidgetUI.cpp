#include <colortable/editor/LyqColorLookupTableRenderSettingsEditorWidgetUI.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lys_core/LyqColorWidget.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqLineEdit.h>
#include <lys_core/LyqScaling.h>
#include <lys_core/LyqSpinBox.h>

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace {

/** In pixels at 96 dots per inch. */
constexpr int LINE_HEIGHT = 20;
constexpr int PREVIEW_HEIGHT = 21;
constexpr QSize INITIAL_SIZE(218, 422);

/** A button whose text may be long, such as the description of a font: it is shown as far as there is room, and all of
 * it in the tool tip. */
class ElidingButton : public QPushButton {
public:
    using QPushButton::QPushButton;
    QSize minimumSizeHint() const override {
        return {fontMetrics().height() * 4, QPushButton::minimumSizeHint().height()};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOptionButton option;
        initStyleOption(&option);
        const QRect room = style()->subElementRect(QStyle::SE_PushButtonContents, &option, this);
        option.text = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
        painter.drawControl(QStyle::CE_PushButton, option);
    }
};

/** A label of one line that is shown as far as there is room. */
class ElidingLabel : public QLabel {
public:
    using QLabel::QLabel;
    QSize minimumSizeHint() const override { return {fontMetrics().height() * 4, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
        style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), shown,
                              foregroundRole());
    }
};

LyqSpinBox* makeSpinBox(QWidget* parent, const char* name) {
    auto* box = new LyqSpinBox(parent, name);
    box->setQuantity(Lyr::Number);
    box->setRange(1.0, 100.0);
    box->setPrecision(0);
    return box;
}

template <class Button>
QPushButton* makeButton(QWidget* parent, const char* name) {
    auto* button = new Button(parent);
    button->setObjectName(QString::fromUtf8(name));
    button->setAutoDefault(false);
    return button;
}

}  // namespace

LyqColorLookupTableRenderSettingsEditorWidgetUI::LyqColorLookupTableRenderSettingsEditorWidgetUI(QWidget* parent,
                                                                                                 const char* name)
    : QWidget(parent),
      // The order is that of the tab key.
      mRenderingComboBox(new LyqComboBox(this, "mRenderingComboBox")),
      mThicknessSpinBox(makeSpinBox(this, "mThicknessSpinBox")),
      mSizeSpinBox(makeSpinBox(this, "mSizeSpinBox")),
      mPositionComboBox(new LyqComboBox(this, "mPositionComboBox")),
      mTextPositionComboBox(new LyqComboBox(this, "mTextPositionComboBox")),
      mAlignmentComboBox(new LyqComboBox(this, "mAlignmentComboBox")),
      mHasOutlineComboBox(new LyqComboBox(this, "mHasOutlineComboBox")),
      mResetPushButton(makeButton<QPushButton>(this, "mResetPushButton")),
      mFontPushButton(makeButton<ElidingButton>(this, "mFontPushButton")),
      mOutlineColorWidget(new LyqColorWidget(this, "mOutlineColorWidget")),
      mTextAlignmentComboBox(new LyqComboBox(this, "mTextAlignmentComboBox")),
      mDescriptionLineEdit(new LyqLineEdit(this, "mDescriptionLineEdit")),
      mColorWidget(new LyqColorWidget(this, "mColorWidget")),
      mDescriptionPreviewLabel(new ElidingLabel(this)) {
    setObjectName(QString::fromUtf8(name ? name : "LyqColorLookupTableRenderSettingsEditorWidgetUI"));
    auto* grid = new QGridLayout(this);
    mRenderingLabel = addRow(*grid, mRenderingComboBox, "mRenderingLabel");
    mThicknessLabel = addRow(*grid, mThicknessSpinBox, "mThicknessLabel");
    mSizeLabel = addRow(*grid, mSizeSpinBox, "mSizeLabel");
    mPositionLabel = addRow(*grid, mPositionComboBox, "mPositionLabel");
    mTextPositionLabel = addRow(*grid, mTextPositionComboBox, "mTextPositionLabel");
    mAlignmentLabel = addRow(*grid, mAlignmentComboBox, "mAlignmentLabel");
    mHasOutlineLabel = addRow(*grid, mHasOutlineComboBox, "mHasOutlineLabel");
    addRow(*grid, mResetPushButton, nullptr);
    mFontLabel = addRow(*grid, mFontPushButton, "mFontLabel");
    mOutlineColorLabel = addRow(*grid, mOutlineColorWidget, "mOutlineColorLabel");
    mTextAlignmentLabel = addRow(*grid, mTextAlignmentComboBox, "mTextAlignmentLabel");
    mDescriptionLabel = addRow(*grid, mDescriptionLineEdit, "mDescriptionLabel");
    mColorLabel = addRow(*grid, mColorWidget, "mColorLabel");
    mPreviewLabel = addRow(*grid, mDescriptionPreviewLabel, "mPreviewLabel");
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(grid->rowCount(), 1);

    // Shorter than its text if it must be: choosing a font leaves the panel as wide as it is.
    mFontPushButton->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    const auto dotsPerInch = static_cast<float>(logicalDpiY());
    mDescriptionPreviewLabel->setObjectName(QStringLiteral("mDescriptionPreviewLabel"));
    mDescriptionPreviewLabel->setMinimumHeight(LyqScaling::getScaledPixeli(dotsPerInch, PREVIEW_HEIGHT));
    mDescriptionPreviewLabel->setTextFormat(Qt::PlainText);
    mDescriptionPreviewLabel->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    LyqColorLookupTableRenderSettingsEditorWidgetUI::languageChange();
    resize(INITIAL_SIZE);
}

LyqColorLookupTableRenderSettingsEditorWidgetUI::~LyqColorLookupTableRenderSettingsEditorWidgetUI() = default;

/** Puts a control into the next row, beside a label that hands it the focus; without a label it takes the whole row. */
QLabel* LyqColorLookupTableRenderSettingsEditorWidgetUI::addRow(QGridLayout& grid, QWidget* control,
                                                                const char* labelName) {
    const int row = grid.rowCount();
    if (control != mDescriptionPreviewLabel) {
        control->setFixedHeight(LyqScaling::getScaledPixeli(static_cast<float>(logicalDpiY()), LINE_HEIGHT));
    }
    if (!labelName) {
        grid.addWidget(control, row, 0, 1, 2);
        return nullptr;
    }
    auto* label = new QLabel(this);
    label->setObjectName(QString::fromUtf8(labelName));
    label->setBuddy(control);
    grid.addWidget(label, row, 0);
    grid.addWidget(control, row, 1);
    return label;
}

void LyqColorLookupTableRenderSettingsEditorWidgetUI::languageChange() {
    const QStringList onOff{tr("On"), tr("Off")};
    const QStringList sides{tr("Left"), tr("Right")};
    mRenderingComboBox->setItems(onOff);
    mHasOutlineComboBox->setItems(onOff);
    mPositionComboBox->setItems(sides);
    mTextPositionComboBox->setItems(sides);
    mAlignmentComboBox->setItems(sides);
    mTextAlignmentComboBox->setItems({tr("Top"), tr("Center"), tr("Bottom")});
    mResetPushButton->setText(tr("Restore Defaults"));
    mFontPushButton->setText(tr("Font", "button"));

    mRenderingLabel->setText(tr("Colorbar visibility"));
    mThicknessLabel->setText(tr("Colorbar thickness [pixel]"));
    mSizeLabel->setText(tr("Colorbar stretch [%]"));
    mPositionLabel->setText(tr("Colorbar position"));
    mTextPositionLabel->setText(tr("Text position"));
    mAlignmentLabel->setText(tr("Colorbar alignment"));
    mHasOutlineLabel->setText(tr("Font outline"));
    mFontLabel->setText(tr("Font"));
    mOutlineColorLabel->setText(tr("Font outline color"));
    mTextAlignmentLabel->setText(tr("Text alignment"));
    mDescriptionLabel->setText(tr("Caption"));
    mColorLabel->setText(tr("Font color"));
    mPreviewLabel->setText(tr("Caption preview"));
}

void LyqColorLookupTableRenderSettingsEditorWidgetUI::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        languageChange();
    }
}
