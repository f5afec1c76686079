#pragma once

#include <lyr_core/LyrString.h>
#include <lyr_core/Lyrenum.h>
#include <lys_core/LysCoreExport.h>

#include <QDialog>

class LyqPresetDefaultHandler;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

/** Lists the presets of a handler by kind, applies them, and renames, deletes, imports and exports the user's. Presets
 * that cannot be used are listed with the reason. A dialog whose handler goes closes. */
class LYS_CORE_EXPORT LyqPresetManageDialog : public QDialog {
    Q_OBJECT

public:
    explicit LyqPresetManageDialog(LyqPresetDefaultHandler* handler, QWidget* parent = nullptr);
    ~LyqPresetManageDialog() override;

    /** Chooses a preset. False if there is none of this kind and name. */
    bool select(const LyrString& name, Lyrenum kind);
    /** What is wrong with the preset that is chosen, or with the last operation; empty if nothing is. */
    QString message() const;

    // What the buttons do, for the preset that is chosen. Those that go on without a question take what it asks for.
    void applySelected();
    bool renameSelected(const QString& name);
    bool removeSelected();
    /** Takes in files; says which ones it could not. */
    bool importFiles(const QStringList& paths);
    bool exportSelected(const QString& path);

private:
    void buildForm();
    void fill();
    void addKind(Lyrenum kind, const QString& title);
    void selectionChanged();
    void askRename();
    void askRemove();
    void askImport();
    void askExport();
    void showMessage(const QString& text);
    bool finish(bool done);
    bool importFile(const QString& path);
    QTreeWidgetItem* selected() const;
    static LyrString nameOf(const QTreeWidgetItem* item);
    static Lyrenum kindOf(const QTreeWidgetItem* item);

    LyqPresetDefaultHandler* mHandler;
    QTreeWidget* mList = nullptr;
    QLabel* mMessage = nullptr;
    /** Why presets could not be listed, empty if they were. */
    QString mListProblem;
    QPushButton* mApply = nullptr;
    QPushButton* mRename = nullptr;
    QPushButton* mDelete = nullptr;
    QPushButton* mImport = nullptr;
    QPushButton* mExport = nullptr;
};
