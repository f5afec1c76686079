#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqPreferenceManager.h>
#include <workbench/AnalysisRunner.h>
#include <workbench/ContentFiles.h>
#include <workbench/MainWindow.h>
#include <workbench/Theme.h>
#include <workbench/UnitsMenu.h>
#include <workbench/ViewGrid.h>

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QInputDialog>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

#include <cmath>
#include <optional>

// What the menus hold and what their entries ask for.

namespace workbench {

namespace {

constexpr const char* DARK_KEY = "workbench/dark";
constexpr const char* FOLDER_KEY = "workbench/folder";

}  // namespace

void MainWindow::buildMenus() {
    mFileMenu = menuBar()->addMenu(tr("&File"));
    mEditMenu = menuBar()->addMenu(tr("&Edit"));
    mViewMenu = menuBar()->addMenu(tr("&View"));
    mAnalysisMenu = menuBar()->addMenu(tr("&Analysis"));
    mAnalysisMenu->addAction(tr("Set &Threshold…"), this, &MainWindow::askThreshold);
    mAnalysisMenu->addSeparator();
    mToolsMenu = menuBar()->addMenu(tr("&Tools"));
    mHelpMenu = menuBar()->addMenu(tr("&Help"));
    buildFileMenu();
    buildEditMenu();
    buildViewMenu();
    buildHelpMenu();
}

void MainWindow::buildFileMenu() {
    mOpenAction = mFileMenu->addAction(tr("&Open Volume…"), this, &MainWindow::chooseFile);
    mOpenAction->setShortcut(QKeySequence::Open);
    QAction* folder = mFileMenu->addAction(tr("Open &Folder of Slices…"), this, &MainWindow::chooseFolder);
    folder->setShortcut(QKeySequence("Ctrl+Shift+O"));
    mRecentMenu = mFileMenu->addMenu(tr("Open &Recent"));
    mFileMenu->addAction(tr("Open &Built-in Casting"), this, [this] { openVolume("builtin:casting"); });
    mCloseAction = mFileMenu->addAction(tr("&Close Volume"), this, [this] {
        if (mContents->mayClose()) {
            closeVolume();
        }
    });
    mCloseAction->setShortcut(QKeySequence::Close);
    mContents = new ContentFiles(*this, *mFileMenu);
    QAction* window =
        mFileMenu->addAction(tr("Save Picture of &Window…"), this, [this] { savePictureAs(picture(), "window.png"); });
    window->setShortcut(QKeySequence("Ctrl+P"));
    QMenu* views = mFileMenu->addMenu(tr("Save Picture of &View"));
    const QStringList titles = {tr("Slice across &z…"), tr("Slice across &y…"), tr("Slice across &x…"), tr("&3D…")};
    for (int i = 0; i < titles.size(); ++i) {
        LyqCameraWidget* view = mViews->views()[static_cast<std::size_t>(i)];
        views->addAction(titles[i], this, [this, view] { savePictureAs(view->getImage(), "view.png"); });
    }
    mFileMenu->addSeparator();
    QAction* quit = mFileMenu->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence("Ctrl+Q"));
}

void MainWindow::buildViewMenu() {
    QAction* reset = mViewMenu->addAction(tr("&Reset All Views"), mViews, &ViewGrid::resetViews);
    reset->setShortcut(QKeySequence("Ctrl+0"));
    QMenu* maximize = mViewMenu->addMenu(tr("&Maximize"));
    const QStringList titles = {tr("Slice across &z"), tr("Slice across &y"), tr("Slice across &x"), tr("&3D")};
    for (int i = 0; i < titles.size(); ++i) {
        LyqCameraWidget* view = mViews->views()[static_cast<std::size_t>(i)];
        QAction* action = maximize->addAction(titles[i], this, [this, view] { mViews->setMaximizedView(view); });
        action->setShortcut(QKeySequence(QString("Ctrl+%1").arg(i + 1)));
    }
    maximize->addSeparator();
    QAction* all = maximize->addAction(tr("&All Views"), this, [this] { mViews->setMaximizedView(nullptr); });
    all->setShortcut(QKeySequence("Ctrl+5"));
    mPanelMenu = mViewMenu->addMenu(tr("&Panels"));
    mViewMenu->addMenu(new UnitsMenu(mRemembers, this));
    QAction* dark = mViewMenu->addAction(tr("&Dark Theme"));
    dark->setCheckable(true);
    dark->setChecked(!mRemembers || LyqPreferenceManager::instance().value(DARK_KEY, true).toBool());
    applyTheme(dark->isChecked());
    connect(dark, &QAction::toggled, this, [this](bool on) {
        applyTheme(on);
        if (mRemembers) {
            LyqPreferenceManager::instance().setValue(DARK_KEY, on);
        }
    });
}

void MainWindow::buildHelpMenu() {
    QAction* keys = mHelpMenu->addAction(tr("&Mouse and Keys"), this, &MainWindow::showKeys);
    keys->setShortcut(QKeySequence::HelpContents);
    mHelpMenu->addAction(tr("&About Workbench"), this, &MainWindow::showAbout);
}

void MainWindow::chooseFile() {
    const QString folder = LyqPreferenceManager::instance().value(FOLDER_KEY, QDir::homePath()).toString();
    const QString kinds = tr("Volumes") + " (*.nrrd *.nhdr *.mha *.mhd *.nii *.nii.gz *.hdr *.tif *.tiff *.dcm);;" +
                          tr("All files") + " (*)";
    const QString path = QFileDialog::getOpenFileName(this, tr("Open Volume"), folder, kinds);
    if (!path.isEmpty()) {
        LyqPreferenceManager::instance().setValue(FOLDER_KEY, QFileInfo(path).absolutePath());
        openVolume(path);
    }
}

void MainWindow::chooseFolder() {
    const QString folder = LyqPreferenceManager::instance().value(FOLDER_KEY, QDir::homePath()).toString();
    const QString path = QFileDialog::getExistingDirectory(this, tr("Open Folder of Slices"), folder);
    if (!path.isEmpty()) {
        LyqPreferenceManager::instance().setValue(FOLDER_KEY, QFileInfo(path).absolutePath());
        openVolume(path);
    }
}

void MainWindow::askThreshold() {
    const std::optional<float> now = mAnalyses->threshold();
    auto* dialog = new QInputDialog(this);
    dialog->setObjectName("thresholdDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Threshold"));
    dialog->setLabelText(
        tr("Analyses take samples from this grey value on for material.\nEmpty: chosen from the values (Otsu)."));
    QLocale plain;
    plain.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    dialog->setTextValue(now ? plain.toString(*now, 'g', QLocale::FloatingPointShortest) : QString());
    connect(dialog, &QInputDialog::textValueSelected, this, [this, plain](const QString& typed) {
        const QString text = typed.trimmed();
        bool isNumber = false;
        const float value = plain.toFloat(text, &isNumber);
        if (text.isEmpty()) {
            mAnalyses->setThreshold(std::nullopt);
        } else if (isNumber && std::isfinite(value)) {
            mAnalyses->setThreshold(value);
        } else {
            showError(tr("Threshold"), tr("\"%1\" is not a number. The threshold stays as it was.").arg(text));
        }
    });
    dialog->open();
}

void MainWindow::savePictureAs(const QImage& picture, const QString& suggestion) {
    const QString file = QFileDialog::getSaveFileName(this, tr("Save Picture"), QDir::home().filePath(suggestion),
                                                      tr("Pictures") + " (*.png *.jpg *.tif)");
    QString message;
    if (!file.isEmpty() && !savePicture(picture, file, message)) {
        showError(tr("Save Picture"), message);
    }
}

void MainWindow::showKeys() {
    const auto row = [](const QString& what, const QString& how) {
        return QString("<tr><td style=\"padding-right:24px\">%1</td><td>%2</td></tr>").arg(what, how);
    };
    const QString slices = row(tr("Wheel, arrow keys"), tr("other slices")) +
                           row(tr("Left button"), tr("set the cross")) + row(tr("Middle button"), tr("pan")) +
                           row(tr("Ctrl+wheel, right button"), tr("zoom"));
    const QString scene = row(tr("Left button"), tr("rotate")) + row(tr("Middle button"), tr("pan")) +
                          row(tr("Wheel, right button"), tr("zoom"));
    const QString both = row(tr("Double click"), tr("one view alone, and back")) + row(tr("R"), tr("show everything"));
    QMessageBox box(this);
    box.setWindowTitle(tr("Mouse and Keys"));
    box.setTextFormat(Qt::RichText);
    box.setText(QString("<h3>%1</h3><table>%2</table><h3>%3</h3><table>%4</table><h3>%5</h3><table>%6</table>")
                    .arg(tr("Slices"), slices, tr("3D"), scene, tr("All views"), both));
    box.exec();
}

void MainWindow::showAbout() {
    QMessageBox::about(
        this, tr("About Workbench"),
        QString("<h3>%1 %2</h3><p>%3</p>")
            .arg(tr("Workbench"), LYS_VERSION,
                 tr("Shows volumes in slices and in 3D, colored through tables whose every color is exact.")));
}

}  // namespace workbench
