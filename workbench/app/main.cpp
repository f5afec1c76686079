#include <lys_core/LyqApplication.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqTranslations.h>
#include <workbench/BatchRun.h>
#include <workbench/MainWindow.h>
#include <workbench/Options.h>
#include <workbench/PluginHost.h>
#include <workbench/app/VirtualDisplay.h>

#include <QApplication>
#include <QLocale>
#include <QLoggingCategory>

#include <cstdio>

namespace {

/** Windows keep their size where the screen is larger, in pixels. */
constexpr QSize SMALLEST_SCREEN(1600, 1200);

void say(const QString& message) {
    std::fprintf(stderr, "workbench: %s\n", message.toLocal8Bit().constData());
}

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int runWindow(const workbench::Options& options, const QStringList& problems) {
    const bool endsByItself = workbench::BatchRun::endsByItself(options);
    workbench::MainWindow window(!endsByItself);
    workbench::BatchRun batch(window, options);
    QObject::connect(&batch, &workbench::BatchRun::ended, &window, [](int status) { QCoreApplication::exit(status); });
    QObject::connect(&batch, &workbench::BatchRun::failed, &window, [&](const QString& message) {
        if (endsByItself) {
            say(message);
        } else {
            window.showError(workbench::MainWindow::tr("This cannot be done"), message);
        }
    });
    if (endsByItself) {
        // The size is that of the picture: pixels of the screen, whatever the window is scaled by.
        window.resize((QSizeF(options.size) / window.devicePixelRatioF()).toSize());
    } else {
        QObject::connect(&window, &workbench::MainWindow::volumeFailed, &window,
                         [&](const QString& path, const QString& message) {
                             window.showError(workbench::MainWindow::tr("%1 cannot be opened").arg(path), message);
                         });
    }
    window.show();
    if (!endsByItself && !problems.isEmpty()) {
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
    if (!hasDisplay() && options.screenshot.isEmpty() && !options.report.isEmpty()) {
        // Numbers need no display, and nobody sees the views.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QLoggingCategory::setFilterRules("lys.views.warning=false");
    }
    workbench::VirtualDisplay display;
    if (!hasDisplay() && !options.screenshot.isEmpty()) {
        display.start(options.size.expandedTo(SMALLEST_SCREEN));
    }
    if (!hasDisplay()) {
        say("there is no display. Without one, run it under a virtual display:\n"
            "  xvfb-run -a -s \"-screen 0 1600x1200x24\" workbench VOLUME --screenshot FILE.png");
        return workbench::BatchRun::UNUSABLE;
    }
    LyqCameraWidget::prepareOpenGL();
    QApplication application(argc, argv);
    QApplication::setOrganizationName("lys_colortable");
    QApplication::setApplicationName("workbench");
    // Mnemonics are brought by the translations, the English one included.
    if (!LyqTranslations::install(QLocale())) {
        LyqTranslations::install(QLocale::English);
    }
    workbench::PluginHost plugins(workbench::PluginHost::defaultFolder(), options.plugIns);
    const QStringList problems = plugins.loadAll();
    for (const QString& problem : problems) {
        say(problem);
    }
    // A picture or a report without the plug-ins that were asked for is another one than was asked for.
    const bool isUnusable = plugins.hasFurtherProblem() && workbench::BatchRun::endsByItself(options);
    status = isUnusable ? workbench::BatchRun::UNUSABLE : runWindow(options, problems);
    for (const QString& problem : plugins.unloadAll()) {
        say(problem);
    }
    LyqTranslations::remove();
    return status;
}
