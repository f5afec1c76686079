#include <lys_core/LyqApplication.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqTranslations.h>
#include <workbench/MainWindow.h>
#include <workbench/Options.h>
#include <workbench/PluginHost.h>

#include <QApplication>
#include <QLocale>
#include <QTimer>

#include <cstdio>

namespace {

constexpr int FAILED = 1;
constexpr int UNUSABLE = 2;
/** How often is looked whether all is there for a picture, in milliseconds. */
constexpr int LOOK_AGAIN = 20;

void say(const QString& message) {
    std::fprintf(stderr, "workbench: %s\n", message.toLocal8Bit().constData());
}

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

/** Ends the application with a picture as soon as nothing is being worked out any more. */
void takePictureWhenDone(workbench::MainWindow& window, const QString& file) {
    auto* timer = new QTimer(&window);
    QObject::connect(timer, &QTimer::timeout, &window, [&window, file, timer] {
        if (window.isBusy()) {
            return;
        }
        timer->stop();
        QString message;
        const bool done = workbench::MainWindow::savePicture(window.picture(), file, message);
        if (!done) {
            say(message);
        }
        QCoreApplication::exit(done ? 0 : FAILED);
    });
    timer->start(LOOK_AGAIN);
}

int runWindow(const workbench::Options& options, const QStringList& problems) {
    const bool isForPicture = !options.screenshot.isEmpty();
    workbench::MainWindow window(!isForPicture);
    QObject::connect(&window, &workbench::MainWindow::volumeFailed, &window,
                     [&](const QString& path, const QString& message) {
                         if (isForPicture) {
                             say(message);
                             QCoreApplication::exit(UNUSABLE);
                         } else {
                             window.showError(workbench::MainWindow::tr("%1 cannot be opened").arg(path), message);
                         }
                     });
    if (isForPicture) {
        // The size is that of the picture: pixels of the screen, whatever the window is scaled by.
        window.resize((QSizeF(options.size) / window.devicePixelRatioF()).toSize());
        QObject::connect(&window, &workbench::MainWindow::volumeOpened, &window,
                         [&] { takePictureWhenDone(window, options.screenshot); });
    }
    window.show();
    if (!isForPicture && !problems.isEmpty()) {
        window.showError(workbench::MainWindow::tr("Plug-ins could not be loaded"), problems.join("\n\n"));
    }
    window.openVolume(options.volume);
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    workbench::Options options;
    int status = 0;
    if (!workbench::parseOptions(argc, argv, options, status)) {
        return status;
    }
    if (!hasDisplay()) {
        say("there is no display. Without one, run it under a virtual display:\n"
            "  xvfb-run -a -s \"-screen 0 1600x1200x24\" workbench VOLUME --screenshot FILE.png");
        return UNUSABLE;
    }
    LyqCameraWidget::prepareOpenGL();
    QApplication application(argc, argv);
    QApplication::setOrganizationName("lys_colortable");
    QApplication::setApplicationName("workbench");
    // Mnemonics are brought by the translations, the English one included.
    if (!LyqTranslations::install(QLocale())) {
        LyqTranslations::install(QLocale::English);
    }
    workbench::PluginHost plugins(workbench::PluginHost::defaultFolder());
    const QStringList problems = plugins.loadAll();
    for (const QString& problem : problems) {
        say(problem);
    }
    status = runWindow(options, problems);
    for (const QString& problem : plugins.unloadAll()) {
        say(problem);
    }
    LyqTranslations::remove();
    return status;
}
