#pragma once

#include <colortable/LysColortableExport.h>

#include <QWidget>

class LyqColorWidget;
class LyqComboBox;
class LyqLineEdit;
class LyqSpinBox;
class QGridLayout;
class QLabel;
class QPushButton;

/** The form of the legend settings editor: controls, labels and texts. The members are the controls' object names. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableRenderSettingsEditorWidgetUI : public QWidget {
    Q_OBJECT

public:
    explicit LyqColorLookupTableRenderSettingsEditorWidgetUI(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqColorLookupTableRenderSettingsEditorWidgetUI() override;

protected Q_SLOTS:
    /** Sets all texts in the language of now. */
    virtual void languageChange();

protected:
    void changeEvent(QEvent* event) override;

    LyqComboBox* mRenderingComboBox;
    LyqSpinBox* mThicknessSpinBox;
    LyqSpinBox* mSizeSpinBox;
    LyqComboBox* mPositionComboBox;
    LyqComboBox* mTextPositionComboBox;
    LyqComboBox* mAlignmentComboBox;
    LyqComboBox* mHasOutlineComboBox;
    QPushButton* mResetPushButton;
    QPushButton* mFontPushButton;
    LyqColorWidget* mOutlineColorWidget;
    LyqComboBox* mTextAlignmentComboBox;
    LyqLineEdit* mDescriptionLineEdit;
    LyqColorWidget* mColorWidget;
    QLabel* mDescriptionPreviewLabel;

private:
    QLabel* addRow(QGridLayout& grid, QWidget* control, const char* labelName);

    QLabel* mRenderingLabel;
    QLabel* mThicknessLabel;
    QLabel* mSizeLabel;
    QLabel* mPositionLabel;
    QLabel* mTextPositionLabel;
    QLabel* mAlignmentLabel;
    QLabel* mHasOutlineLabel;
    QLabel* mFontLabel;
    QLabel* mOutlineColorLabel;
    QLabel* mTextAlignmentLabel;
    QLabel* mDescriptionLabel;
    QLabel* mColorLabel;
    QLabel* mPreviewLabel;
};
