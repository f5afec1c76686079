#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>
#include <workbench/BatchRun.h>
#include <workbench/MainWindow.h>

#include <QStringList>
#include <QTimer>

namespace workbench {

namespace {

/** How often is looked whether all is there for a picture, in milliseconds. */
constexpr int LOOK_AGAIN = 20;

/** What a preset is applied to: the first object of the layer in front that presets fit. Null if there is none. */
LyqPresetHandler* presetsOfFront(LyrObject*& object) {
    const LyqLayer* front = LyqSession::instance().activeLayer();
    for (const LyqLayer::Content& content : front ? front->contents() : std::vector<LyqLayer::Content>()) {
        LyqPresetHandler* handler = content.presetCategory == Lyrenum(-1)
                                        ? nullptr
                                        : LyqPresetRegistry::instance().findHandler(content.presetCategory);
        if (handler) {
            object = content.object;
            return handler;
        }
    }
    return nullptr;
}

/** What is said of an analysis that is not there. */
QString unknownAnalysis(const QString& id) {
    QStringList known;
    for (const auto* analysis : LyqExtensionRegistry::instance().extensionsOf<LyqAnalysisExtension>()) {
        known << analysis->id();
    }
    return known.isEmpty() ? BatchRun::tr("There is no analysis \"%1\": no plug-in offers any.").arg(id)
                           : BatchRun::tr("There is no analysis \"%1\". There are: %2").arg(id, known.join(", "));
}

/** What is said of a preset that is not there. */
QString unknownPreset(const QString& name, LyqPresetHandler& handler) {
    QStringList known;
    for (const Lyrenum kind : {Lyr::UserPreset, Lyr::InstalledPreset, Lyr::DefaultPreset}) {
        LyrStringList names;
        handler.listPresets(names, kind);
        for (const LyrString& each : names) {
            known << QString::fromStdString(each.utf8());
        }
    }
    known.removeDuplicates();
    return BatchRun::tr("There is no preset \"%1\". There are: %2").arg(name, known.join(", "));
}

}  // namespace

BatchRun::BatchRun(MainWindow& window, const Options& options) : QObject(&window), mWindow(window), mOptions(options) {
    connect(&window, &MainWindow::volumeFailed, this, [this](const QString&, const QString& message) {
        if (endsByItself(mOptions)) {
            stop(UNUSABLE, message);
        }
    });
    // Only the first volume is what the command line asked for.
    connect(&window, &MainWindow::volumeOpened, this, &BatchRun::begin, Qt::SingleShotConnection);
}

bool BatchRun::endsByItself(const Options& options) {
    return !options.screenshot.isEmpty() || !options.report.isEmpty();
}

void BatchRun::begin() {
    if (mOptions.analysis.isEmpty()) {
        applyPreset();
        if (!mStopped) {
            takePictureWhenDone();
        }
        return;
    }
    auto* analysis = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>(mOptions.analysis);
    if (!analysis) {
        stop(UNUSABLE, unknownAnalysis(mOptions.analysis));
        return;
    }
    AnalysisRunner& runner = mWindow.analyses();
    runner.setThreshold(mOptions.threshold);
    runner.setNumbersOnly(endsByItself(mOptions) && mOptions.screenshot.isEmpty());
    connect(&runner, &AnalysisRunner::succeeded, this, &BatchRun::save, Qt::SingleShotConnection);
    connect(&runner, &AnalysisRunner::finished, this, &BatchRun::analysed, Qt::SingleShotConnection);
    QString message;
    if (!runner.start(*analysis, message)) {
        stop(FAILED, message);
    }
}

void BatchRun::applyPreset() {
    if (mOptions.preset.isEmpty()) {
        return;
    }
    LyrObject* object = nullptr;
    LyqPresetHandler* handler = presetsOfFront(object);
    if (!handler) {
        stop(UNUSABLE, tr("The preset \"%1\" is not applied: no layer has a table.").arg(mOptions.preset));
        return;
    }
    if (handler->getApplicationObject() != object) {
        handler->setApplicationObject(object);
    }
    const LyrString name(mOptions.preset.toStdString());
    const Lyrenum kind = handler->findPreset(name);
    if (kind == Lyrenum(-1)) {
        stop(UNUSABLE, unknownPreset(mOptions.preset, *handler));
        return;
    }
    if (!handler->applyPreset(name, kind)) {
        stop(FAILED, tr("The preset \"%1\" cannot be applied. %2")
                         .arg(mOptions.preset, QString::fromStdString(handler->getMessage().utf8())));
    }
}

void BatchRun::save(const LyqAnalysisRun& run) {
    QString message;
    // Before the report, which may judge by the table.
    applyPreset();
    if (!mStopped && !mOptions.report.isEmpty() && !run.saveReport(mOptions.report, message)) {
        stop(FAILED, message);
    }
}

void BatchRun::analysed(bool done, const QString& message) {
    if (!done && endsByItself(mOptions)) {
        stop(FAILED, message.isEmpty() ? tr("The analysis was canceled.") : message);
    } else if (done && !mStopped) {
        takePictureWhenDone();
    }
}

void BatchRun::takePictureWhenDone() {
    if (mOptions.screenshot.isEmpty()) {
        if (endsByItself(mOptions)) {
            stop(0, QString());
        }
        return;
    }
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, [this, timer] {
        if (mWindow.isBusy()) {
            return;
        }
        timer->stop();
        QString message;
        const bool done = MainWindow::savePicture(mWindow.picture(), mOptions.screenshot, message);
        stop(done ? 0 : FAILED, message);
    });
    timer->start(LOOK_AGAIN);
}

void BatchRun::stop(int status, const QString& message) {
    if (mStopped) {
        return;
    }
    mStopped = true;
    if (!message.isEmpty()) {
        Q_EMIT failed(message);
    }
    if (endsByItself(mOptions)) {
        Q_EMIT ended(status);
    }
}

}  // namespace workbench
