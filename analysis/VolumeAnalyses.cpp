#include <analysis/AnalysisMessage_p.h>
#include <analysis/DefectSurface.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/LyrThicknessLayer.h>
#include <analysis/LyrValueLayer.h>
#include <analysis/ReportMessage_p.h>
#include <analysis/TableBoundaries.h>
#include <analysis/VolumeAnalyses_p.h>
#include <analysis/compute/LyrAnalysisReport.h>
#include <analysis/compute/LyrDefectAnalysis.h>
#include <analysis/compute/LyrVerdict.h>
#include <analysis/compute/LyrWallThickness.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqSession.h>

#include <QFile>

#include <algorithm>
#include <optional>

namespace {

/** Rows of a report in the window; a file holds all of them. */
constexpr std::size_t MOST_ROWS = 10000;

QString needsVolume() {
    return QCoreApplication::translate("VolumeAnalysis", "The analysis needs an opened volume.");
}

/** The document of a run, kept open, and what its thread reads of it. */
class VolumeRun : public LyqAnalysisRun {
public:
    explicit VolumeRun(LyrVolumeObject* document) : mDocument(document), mVolume(document->volume()) {}

    bool setThreshold(std::optional<float> threshold) override {
        mThreshold = threshold;
        return true;
    }

    std::vector<LyrObjectPtr> createLayers() override {
        const LyrObjectPtr layer(createLayer(static_cast<LyrVolumeObject*>(mDocument.get())));
        if (!layer) {
            return {};
        }
        // The values in colour would hide what they lie beneath, and an earlier result of the same analysis would have
        // its legend in the same place: they step back, a click brings them again.
        for (LyqLayer* shown : LyqSession::instance().layers()) {
            if (dynamic_cast<LyrValueLayer*>(shown) || &shown->getMetaClass() == &layer->getMetaClass()) {
                shown->setRendering(false);
            }
        }
        return {layer};
    }

protected:
    virtual LyrColoredLayer* createLayer(LyrVolumeObject* document) = 0;
    const std::shared_ptr<const LyrVolume>& volume() const { return mVolume; }
    const std::optional<float>& threshold() const { return mThreshold; }

    static bool tell(const LyrAnalysisOutcome& outcome, const QString& title, QString& message) {
        message = lysAnalysisMessage(outcome, title);
        return false;
    }
    template <class Result, class... Further>
    static bool save(const QString& file, const Result& result, QString& message, const Further&... further) {
        std::string error;
        const bool saved = LyrAnalysisReport::save(QFile::encodeName(file).toStdString(), result, error, further...);
        message = saved ? QString() : lysReportMessage(file, error);
        return saved;
    }

private:
    LyrObjectPtr mDocument;
    std::shared_ptr<const LyrVolume> mVolume;
    std::optional<float> mThreshold;
};

class DefectRun : public VolumeRun {
    Q_DECLARE_TR_FUNCTIONS(DefectVolumeAnalysis)

public:
    using VolumeRun::VolumeRun;

    bool compute(const Progress& progress, QString& message) override {
        // What the surfaces in the 3D view take of the time, about.
        constexpr double SURFACE = 0.1;
        LyrAnalysisControl control;
        control.progress = [&](double part) { return progress(part * (numbersOnly() ? 1.0 : 1.0 - SURFACE)); };
        control.cancel = &cancelFlag();
        LyrAnalysisOutcome outcome;
        auto result = std::make_shared<LyrDefectResult>();
        if (!LyrDefectAnalysis::run(volume(), {.threshold = threshold()}, *result, outcome, control)) {
            return tell(outcome, tr("Defect volume"), message);
        }
        if (numbersOnly()) {
            mSurface = {};
            mSurface.mesh = std::make_shared<LyrRendering::SurfaceMesh>();
            mResult = std::move(result);
            return true;
        }
        std::string error;
        const auto further = [&](double part) { return progress(1.0 - SURFACE + part * SURFACE); };
        if (!DefectSurface::extract(*result, mSurface, error, further)) {
            if (error.empty()) {
                return false;
            }
            // The numbers are there; what is missing for lack of memory is a picture in one of the views.
            mSurface = {};
            mSurface.mesh = std::make_shared<LyrRendering::SurfaceMesh>();
        }
        mResult = std::move(result);
        return true;
    }

    LyqReport report() const override {
        LyqReport report;
        report.id = QString::fromUtf8("defect-volume");
        report.title = tr("Defect volume");
        report.columns = {{"number", tr("Number")},        {"volume_mm3", tr("Volume (mm³)")},
                          {"center_x_mm", tr("X (mm)")},   {"center_y_mm", tr("Y (mm)")},
                          {"center_z_mm", tr("Z (mm)")},   {"size_mm", tr("Size (mm)")},
                          {"sphericity", tr("Sphericity")}};
        const std::size_t listed = std::min(mResult->defects.size(), MOST_ROWS);
        for (std::size_t i = 0; i < listed; ++i) {
            const LyrDefect& defect = mResult->defects[i];
            report.rows.append({defect.number, defect.volume, defect.center[0], defect.center[1], defect.center[2],
                                defect.size, defect.sphericity});
        }
        report.rowsLeftOut = static_cast<qint64>(mResult->defects.size() - listed);
        report.totals = {{"defect_count", tr("Defects"), static_cast<qulonglong>(mResult->defects.size())},
                         {"defect_volume_mm3", tr("Volume of all defects (mm³)"), mResult->defectVolume},
                         {"porosity_percent", tr("Porosity (%)"), mResult->porosity},
                         {"threshold", tr("Threshold"), mResult->threshold}};
        return report;
    }

    bool saveReport(const QString& file, QString& message) const override {
        const auto* layer = static_cast<const LyrDefectLayer*>(mLayer.get());
        const std::vector<LyrVerdict> verdicts = layer ? layer->verdicts() : std::vector<LyrVerdict>();
        return save(file, *mResult, message, verdicts);
    }

protected:
    LyrColoredLayer* createLayer(LyrVolumeObject* document) override {
        LyrDefectLayer* layer = LyrDefectLayer::create(document, mResult, mSurface);
        mLayer = LyrObjectPtr(layer);
        return layer;
    }

private:
    std::shared_ptr<const LyrDefectResult> mResult;
    LyrObjectPtr mLayer;  ///< whose table judges
    DefectSurface mSurface;
};

class ThicknessRun : public VolumeRun {
    Q_DECLARE_TR_FUNCTIONS(WallThicknessAnalysis)

public:
    using VolumeRun::VolumeRun;

    bool compute(const Progress& progress, QString& message) override {
        LyrAnalysisControl control;
        control.progress = progress;
        control.cancel = &cancelFlag();
        LyrAnalysisOutcome outcome;
        auto result = std::make_shared<LyrThicknessResult>();
        if (!LyrWallThickness::run(volume(), {.threshold = threshold()}, *result, outcome, control)) {
            return tell(outcome, tr("Wall thickness"), message);
        }
        mResult = std::move(result);
        return true;
    }

    LyqReport report() const override {
        LyqReport report;
        report.id = QString::fromUtf8("wall-thickness");
        report.title = tr("Wall thickness");
        report.totals = {{"least_mm", tr("Least (mm)"), mResult->least},
                         {"greatest_mm", tr("Greatest (mm)"), mResult->greatest},
                         {"mean_mm", tr("Mean (mm)"), mResult->mean},
                         {"standard_deviation_mm", tr("Standard deviation (mm)"), mResult->deviation},
                         {"median_mm", tr("Median (mm)"), mResult->median},
                         {"threshold", tr("Threshold"), mResult->threshold}};
        return report;
    }

    bool saveReport(const QString& file, QString& message) const override {
        const auto* layer = static_cast<const LyrThicknessLayer*>(mLayer.get());
        return save(file, *mResult, message, layer ? dividingBoundaries(*layer) : std::vector<float>());
    }

protected:
    LyrColoredLayer* createLayer(LyrVolumeObject* document) override {
        LyrThicknessLayer* layer = LyrThicknessLayer::create(document, mResult);
        mLayer = LyrObjectPtr(layer);
        return layer;
    }

private:
    /** The boundaries of the layer's table; none if they are the ends of all values, and so divide nothing. */
    static std::vector<float> dividingBoundaries(const LyrThicknessLayer& layer) {
        const LyrVolume::ValueRange range = layer.values()->valueRange();
        std::vector<float> boundaries = lysBoundaries(layer.table());
        return boundaries == std::vector<float>{range.low, range.high} ? std::vector<float>() : boundaries;
    }

    std::shared_ptr<const LyrThicknessResult> mResult;
    LyrObjectPtr mLayer;  ///< whose table divides
};

template <class Run>
std::unique_ptr<LyqAnalysisRun> runOver(LyrObject* document, QString& message) {
    auto* opened = dynamic_cast<LyrVolumeObject*>(document);
    if (!opened) {
        message = needsVolume();
        return nullptr;
    }
    return std::make_unique<Run>(opened);
}

}  // namespace

std::unique_ptr<LyqAnalysisRun> DefectVolumeAnalysis::createRun(LyrObject* document, QString& message) {
    return runOver<DefectRun>(document, message);
}

std::unique_ptr<LyqAnalysisRun> WallThicknessAnalysis::createRun(LyrObject* document, QString& message) {
    return runOver<ThicknessRun>(document, message);
}
