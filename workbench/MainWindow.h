#pragma once

#include <QMainWindow>
#include <QStringList>

#include <memory>

class LyrVolume;
class QAction;
class QLabel;
class QMenu;
class QProgressBar;
class QToolBar;
class QToolButton;

namespace workbench {

class AnalysisRunner;
class ContentFiles;
class ExtensionUi;
class ReadoutBar;
class ViewGrid;
class VolumeLoader;

/** The window: views, panels, menus, and what opens and closes volumes. */
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /** @param remembers  whether places and recent files are read and kept */
    explicit MainWindow(bool remembers);
    ~MainWindow() override;

    /** Begins to read a volume; it takes the place of the one that is open when it is there. */
    void openVolume(const QString& path);
    /** Without a question; for that see ContentFiles::mayClose(). */
    void closeVolume();
    bool isLoading() const;
    /** True while layers, or the volume, are still being worked out. */
    bool isBusy() const;

    ViewGrid& views() const { return *mViews; }
    ReadoutBar& readout() const { return *mReadout; }
    AnalysisRunner& analyses() const { return *mAnalyses; }
    ContentFiles& contents() const { return *mContents; }

    /** The window as it is now, every view up to date. */
    QImage picture();
    /** Writes a picture, PNG or what the name says. False and a message if it cannot be. */
    static bool savePicture(const QImage& picture, const QString& file, QString& message);

    void showError(const QString& title, const QString& message);

Q_SIGNALS:
    void volumeOpened(const QString& path);
    void volumeFailed(const QString& path, const QString& message);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildStatusBar();
    void buildPanels();
    void buildMenus();
    void buildFileMenu();
    void buildEditMenu();
    void buildToolBar();
    void buildHistory();
    void arrangePanels();
    void buildViewMenu();
    void buildHelpMenu();
    void connectSession();
    void volumeLoaded(const QString& path, const std::shared_ptr<const LyrVolume>& volume, const QStringList& warnings);
    void showVolume(const QString& path, const std::shared_ptr<const LyrVolume>& volume);
    void updateRecent();
    void remember(const QString& path);
    void updateTitle();
    void showProgress(const QString& text, double done);
    void hideProgress();
    void chooseFile();
    void chooseFolder();
    void askThreshold();
    void savePictureAs(const QImage& picture, const QString& suggestion);
    void showKeys();
    void showAbout();
    void restorePlaces();

    bool mRemembers;
    ViewGrid* mViews;
    VolumeLoader* mLoader;
    AnalysisRunner* mAnalyses;
    ReadoutBar* mReadout;
    std::unique_ptr<ExtensionUi> mExtensions;
    QMenu* mFileMenu = nullptr;
    QMenu* mEditMenu = nullptr;
    QMenu* mViewMenu = nullptr;
    QMenu* mPanelMenu = nullptr;
    QMenu* mAnalysisMenu = nullptr;
    QMenu* mToolsMenu = nullptr;
    QMenu* mHelpMenu = nullptr;
    QMenu* mRecentMenu = nullptr;
    QAction* mOpenAction = nullptr;
    QAction* mCloseAction = nullptr;
    QAction* mUndoAction = nullptr;
    QAction* mRedoAction = nullptr;
    QToolBar* mToolBar = nullptr;
    ContentFiles* mContents = nullptr;
    QLabel* mProgressText = nullptr;
    QProgressBar* mProgress = nullptr;
    QToolButton* mCancel = nullptr;
};

}  // namespace workbench
