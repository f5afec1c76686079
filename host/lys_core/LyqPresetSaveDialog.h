#pragma once

#include <lys_core/LysCoreExport.h>

#include <QDialog>
#include <QPointer>

class LyqPresetHandler;
class QComboBox;
class QDialogButtonBox;
class QLabel;

/** Asks for a name and saves what is being edited as a preset of the user. What the handler asks for besides a name
 * stands below. A dialog whose handler goes closes. */
class LYS_CORE_EXPORT LyqPresetSaveDialog : public QDialog {
    Q_OBJECT

public:
    /** The handler may be null: nothing can be saved then. */
    explicit LyqPresetSaveDialog(LyqPresetHandler* handler, QWidget* parent = nullptr);
    ~LyqPresetSaveDialog() override;

    QString presetName() const;
    void setPresetName(const QString& name);
    /** The handler's part of the dialog, null if there is none (any more). */
    QWidget* extension() const;
    /** What went wrong last, empty if nothing did. */
    QString message() const;

    /** Saves, after a question where a preset of this name would be replaced. Stays open, with a message, if that
     * fails. */
    void accept() override;

private:
    void buildForm();
    void fillNames();
    void showMessage(const QString& text);
    void updateButtons();
    void loseHandler();
    bool mayReplace(const QString& name);

    LyqPresetHandler* mHandler;
    QComboBox* mName = nullptr;
    QPointer<QWidget> mExtension;
    QLabel* mMessage = nullptr;
    QDialogButtonBox* mButtons = nullptr;
};
