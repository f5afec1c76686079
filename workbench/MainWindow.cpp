#include <lyr_core/LyrObjectPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqLayerExtension.h>
#include <lys_core/LyqPreferenceManager.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyrWorkspace.h>
#include <workbench/AnalysisRunner.h>
#include <workbench/ContentFiles.h>
#include <workbench/ExtensionUi.h>
#include <workbench/LayersPanel.h>
#include <workbench/LyrGreyLayer.h>
#include <workbench/MainWindow.h>
#include <workbench/ReadoutBar.h>
#include <workbench/ViewGrid.h>
#include <workbench/VolumeLoader.h>

#include <QCloseEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QSaveFile>
#include <QStatusBar>
#include <QToolButton>
#include <QUndoStack>
#include <QUrl>

#include <algorithm>

namespace workbench {

namespace {

constexpr int RECENT = 8;
constexpr const char* RECENT_KEY = "workbench/recent";
constexpr const char* GEOMETRY_KEY = "workbench/geometry";
constexpr const char* STATE_KEY = "workbench/state";

QString displayName(const QString& path) {
    return path.startsWith("builtin:") ? path.mid(8) : QFileInfo(path).fileName();
}

}  // namespace

MainWindow::MainWindow(bool remembers)
    : mRemembers(remembers),
      mViews(new ViewGrid(this)),
      mLoader(new VolumeLoader(this)),
      mAnalyses(new AnalysisRunner(this)),
      mReadout(new ReadoutBar(this)) {
    LyqApplication::instance().setMainWidget(this);
    setObjectName("workbench");
    setAcceptDrops(true);
    setDockOptions(AnimatedDocks | AllowNestedDocks | AllowTabbedDocks);
    // A list at the bottom takes its height from the views, not from the editors, which need all of theirs.
    setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
    setCentralWidget(mViews);
    buildStatusBar();
    buildMenus();
    buildToolBar();
    buildPanels();
    ExtensionUi::Places places;
    places.menus = {{LyqActionExtension::Menu::File, mFileMenu},         {LyqActionExtension::Menu::Edit, mEditMenu},
                    {LyqActionExtension::Menu::View, mViewMenu},         {LyqActionExtension::Menu::Help, mHelpMenu},
                    {LyqActionExtension::Menu::Analysis, mAnalysisMenu}, {LyqActionExtension::Menu::Tools, mToolsMenu}};
    places.docks = mPanelMenu;
    places.toolBar = mToolBar;
    mExtensions = std::make_unique<ExtensionUi>(*this, places, *mAnalyses);
    buildHistory();
    connectSession();
    restorePlaces();
    updateTitle();
}

MainWindow::~MainWindow() {
    mLoader->cancel();
    mAnalyses->cancel();
    LyqSession::instance().disconnect(this);
    LyqApplication::instance().undoStack().disconnect(this);
    LyqApplication::instance().undoStack().clear();
    LyqSession::instance().setDocument(nullptr);
    mExtensions.reset();
}

void MainWindow::buildStatusBar() {
    mProgressText = new QLabel(this);
    mProgress = new QProgressBar(this);
    mProgress->setMaximumWidth(180);
    mProgress->setTextVisible(false);
    mProgress->setRange(0, 1000);
    mCancel = new QToolButton(this);
    mCancel->setText(tr("Cancel"));
    mCancel->setObjectName("cancelWork");
    mCancel->setAutoRaise(true);
    statusBar()->addWidget(mReadout);
    statusBar()->addPermanentWidget(mProgressText);
    statusBar()->addPermanentWidget(mProgress);
    statusBar()->addPermanentWidget(mCancel);
    connect(mCancel, &QToolButton::clicked, this, [this] {
        mLoader->cancel();
        mAnalyses->cancel();
        hideProgress();
    });
    hideProgress();
}

void MainWindow::buildPanels() {
    auto* layers = new QDockWidget(tr("Layers"), this);
    layers->setObjectName("dock-layers");
    layers->setWidget(new LayersPanel(layers));
    addDockWidget(Qt::RightDockWidgetArea, layers);
    mPanelMenu->addAction(layers->toggleViewAction());
}

void MainWindow::connectSession() {
    LyqSession& session = LyqSession::instance();
    connect(&session, &LyqSession::documentChanged, this, &MainWindow::updateTitle);
    connect(mViews, &ViewGrid::positionPicked, &session, &LyqSession::picked);
    connect(mViews, &ViewGrid::positionHovered, this, [this](const LyrVector3<float>& position, bool inside) {
        if (inside) {
            mReadout->show(position);
        } else {
            mReadout->clear();
        }
    });
    connect(mLoader, &VolumeLoader::progressChanged, this,
            [this](double done) { showProgress(tr("Reading %1").arg(displayName(mLoader->path())), done); });
    connect(mLoader, &VolumeLoader::loaded, this, &MainWindow::volumeLoaded);
    connect(mLoader, &VolumeLoader::failed, this, [this](const QString& path, const QString& message) {
        hideProgress();
        Q_EMIT volumeFailed(path, message);
    });
    connect(mAnalyses, &AnalysisRunner::progressChanged, this,
            [this](double done) { showProgress(mAnalyses->title(), done); });
    connect(mAnalyses, &AnalysisRunner::finished, this, [this](bool succeeded, const QString& message) {
        hideProgress();
        if (!succeeded && !message.isEmpty()) {
            showError(mAnalyses->title(), message);
        }
    });
    connect(mContents, &ContentFiles::failed, this, &MainWindow::showError);
    connect(mExtensions.get(), &ExtensionUi::failed, this,
            [this](const QString& message) { showError(tr("This cannot be done"), message); });
}

void MainWindow::openVolume(const QString& path) {
    showProgress(tr("Reading %1").arg(displayName(path)), 0.0);
    mLoader->load(path);
}

bool MainWindow::isLoading() const {
    return mLoader->isLoading();
}

bool MainWindow::isBusy() const {
    const std::vector<LyqLayer*> layers = LyqSession::instance().layers();
    return mLoader->isLoading() || mAnalyses->isRunning() ||
           !std::all_of(layers.begin(), layers.end(), [](const LyqLayer* layer) { return layer->isComplete(); });
}

void MainWindow::volumeLoaded(const QString& path, const std::shared_ptr<const LyrVolume>& volume,
                              const QStringList& warnings) {
    hideProgress();
    if (!mContents->mayClose()) {
        return;
    }
    closeVolume();
    showVolume(path, volume);
    remember(path);
    if (!warnings.isEmpty()) {
        statusBar()->showMessage(warnings.join("; "), 10000);
    }
    Q_EMIT volumeOpened(path);
}

void MainWindow::showVolume(const QString& path, const std::shared_ptr<const LyrVolume>& volume) {
    LyqSession& session = LyqSession::instance();
    const LyrObjectPtr document(new LyrVolumeObject(volume, displayName(path).toStdString(), path.toStdString()));
    auto& opened = static_cast<LyrVolumeObject&>(*document);
    session.setDocument(document.get());
    if (LyrWorkspace* workspace = LyqApplication::instance().workspace()) {
        workspace->setScene({}, opened.extent(), opened.step());
    }
    const LyrObjectPtr grey(new LyrGreyLayer(&opened));
    session.addLayer(static_cast<LyqLayer*>(grey.get()));
    for (auto* offer : LyqExtensionRegistry::instance().extensionsOf<LyqLayerExtension>()) {
        if (!offer->isShownAtFirst() || !offer->accepts(document.get())) {
            continue;
        }
        QString message;
        const LyrObjectPtr layer = offer->createLayer(document.get(), message);
        if (!session.addLayer(dynamic_cast<LyqLayer*>(layer.get()))) {
            showError(offer->title(), message);
        }
    }
    mViews->resetViews();
}

void MainWindow::closeVolume() {
    mLoader->cancel();
    mAnalyses->cancel();
    hideProgress();
    mReadout->clear();
    // Steps of the history hold objects of the volume's layers.
    LyqApplication::instance().undoStack().clear();
    LyqSession::instance().setDocument(nullptr);
}

void MainWindow::updateTitle() {
    const auto* opened = dynamic_cast<LyrVolumeObject*>(LyqSession::instance().document());
    const QString name = tr("Workbench");
    setWindowTitle(opened ? tr("%1[*] — %2").arg(QString::fromStdString(opened->name()), name) : name);
    mCloseAction->setEnabled(opened != nullptr);
}

void MainWindow::showProgress(const QString& text, double done) {
    mProgressText->setText(text);
    mProgress->setValue(static_cast<int>(done * 1000.0));
    mProgressText->show();
    mProgress->show();
    mCancel->show();
}

void MainWindow::hideProgress() {
    mProgressText->hide();
    mProgress->hide();
    mCancel->hide();
}

void MainWindow::showError(const QString& title, const QString& message) {
    auto* box = new QMessageBox(QMessageBox::Warning, title, message, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->open();
}

void MainWindow::remember(const QString& path) {
    if (!mRemembers) {
        return;
    }
    LyqPreferenceManager& preferences = LyqPreferenceManager::instance();
    QStringList recent = preferences.value(RECENT_KEY).toStringList();
    recent.removeAll(path);
    recent.prepend(path);
    preferences.setValue(RECENT_KEY, QStringList(recent.mid(0, RECENT)));
    updateRecent();
}

void MainWindow::updateRecent() {
    mRecentMenu->clear();
    const QStringList recent =
        mRemembers ? LyqPreferenceManager::instance().value(RECENT_KEY).toStringList() : QStringList();
    int number = 1;
    for (const QString& path : recent) {
        QString text = QFileInfo(path).fileName() == path ? path : displayName(path);
        text.replace('&', "&&");
        QAction* action = mRecentMenu->addAction(QString("&%1  %2").arg(number++).arg(text));
        action->setStatusTip(path);
        connect(action, &QAction::triggered, this, [this, path] { openVolume(path); });
    }
    mRecentMenu->setEnabled(!recent.isEmpty());
}

QImage MainWindow::picture() {
    mViews->finishFrames();
    return grab().toImage();
}

bool MainWindow::savePicture(const QImage& picture, const QString& file, QString& message) {
    const QString suffix = QFileInfo(file).suffix();
    QSaveFile out(file);
    if (picture.isNull()) {
        message = tr("There is nothing to make a picture of.");
    } else if (!out.open(QIODevice::WriteOnly) ||
               !picture.save(&out, suffix.isEmpty() ? "png" : suffix.toLatin1().constData()) || !out.commit()) {
        message = tr("The picture cannot be written to %1: %2")
                      .arg(file, out.error() == QFileDevice::NoError ? tr("unknown picture format \"%1\"").arg(suffix)
                                                                     : out.errorString());
    } else {
        return true;
    }
    return false;
}

void MainWindow::restorePlaces() {
    resize(1280, 860);
    arrangePanels();
    if (mRemembers) {
        LyqPreferenceManager& preferences = LyqPreferenceManager::instance();
        restoreGeometry(preferences.value(GEOMETRY_KEY).toByteArray());
        restoreState(preferences.value(STATE_KEY).toByteArray());
    }
    updateRecent();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!mContents->mayClose()) {
        event->ignore();
        return;
    }
    if (mRemembers) {
        LyqPreferenceManager& preferences = LyqPreferenceManager::instance();
        preferences.setValue(GEOMETRY_KEY, saveGeometry());
        preferences.setValue(STATE_KEY, saveState());
    }
    closeVolume();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.first().isLocalFile()) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.first().isLocalFile()) {
        event->acceptProposedAction();
        openVolume(urls.first().toLocalFile());
    }
}

}  // namespace workbench
