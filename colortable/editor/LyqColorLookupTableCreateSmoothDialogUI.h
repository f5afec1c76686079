#pragma once

#include <colortable/LysColortableExport.h>

#include <QDialog>

class LyqComboBox;
class LyqSpinBox;
class QLabel;
class QPushButton;

/** The form of LyqColorLookupTableCreateSmoothDialog. */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableCreateSmoothDialogUI : public QDialog {
    Q_OBJECT

public:
    /** The flags are a number of the toolkit's 3.3 series; every one gives an ordinary dialog. */
    explicit LyqColorLookupTableCreateSmoothDialogUI(QWidget* parent = nullptr, const char* name = nullptr,
                                                     bool modal = false, unsigned int flags = 0);

    QLabel* mHeadingLabel;
    QLabel* mFromLabel;
    LyqSpinBox* mFromSpinBox;
    QLabel* mToLabel;
    LyqSpinBox* mToSpinBox;
    QLabel* mTypeLabel;
    LyqComboBox* mTypeComboBox;
    QPushButton* mOkPushButton;
    QPushButton* mCancelPushButton;

protected:
    void changeEvent(QEvent* event) override;

protected Q_SLOTS:
    /** Sets all texts. */
    virtual void languageChange();
};
