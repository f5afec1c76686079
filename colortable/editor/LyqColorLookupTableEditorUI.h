#pragma once

#include <colortable/LysColortableExport.h>

#include <QWidget>

class LyqColorWidget;
class LyqComboBox;
class LyqPresetComboBox;
class QCheckBox;
class QFrame;
class QGroupBox;
class QLabel;
class QPushButton;
class QTable;

/** The form of LyqColorLookupTableEditor. Some of its widgets wait for editors that derive from that one. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableEditorUI : public QWidget {
    Q_OBJECT

public:
    explicit LyqColorLookupTableEditorUI(QWidget* parent = nullptr, const char* name = nullptr);

    static constexpr int SPECIAL_COUNT = 4;

    QGroupBox* mLUTGroupBox;
    QFrame* mLUTFrame;
    QGroupBox* mSectionsGroupBox;
    QTable* mSectionsTable;
    QPushButton* mCreateSmoothPushButton;
    QPushButton* mCreateSteppedPushButton;
    QPushButton* mCreateSphereSegmentSteppedPushButton;
    QGroupBox* mAutoLabelGroupBox;
    QCheckBox* mAutoLabelCheckBox;
    QCheckBox* mAutoScaleCheckBox;
    QPushButton* mAutoScalePushButton;
    QCheckBox* mCustomCheckBox;
    QGroupBox* mPresetGroupBox;
    LyqPresetComboBox* mPresetComboBox;

    QGroupBox* mSpecialGroupBox;
    QGroupBox* mSpecialOptionsGroupBox;
    QLabel* mSpecialOption0Label;
    QLabel* mSpecialOption1Label;
    QLabel* mSpecialOption2Label;
    QLabel* mSpecialOption3Label;
    LyqComboBox* mSpecialOption0ComboBox;
    LyqComboBox* mSpecialOption1ComboBox;
    LyqComboBox* mSpecialOption2ComboBox;
    LyqComboBox* mSpecialOption3ComboBox;
    QGroupBox* mSpecialColorsGroupBox;
    QLabel* mSpecialColor0Label;
    QLabel* mSpecialColor1Label;
    QLabel* mSpecialColor2Label;
    QLabel* mSpecialColor3Label;
    LyqColorWidget* mSpecialColor0Widget;
    LyqColorWidget* mSpecialColor1Widget;
    LyqColorWidget* mSpecialColor2Widget;
    LyqColorWidget* mSpecialColor3Widget;
    QPushButton* mSpecialAction0PushButton;

protected:
    void changeEvent(QEvent* event) override;

protected Q_SLOTS:
    /** Sets all texts. */
    virtual void languageChange();

private:
    void makeSections();
    void makeSettings();
    void makeSpecials();
    void setSpecialTexts();
};
