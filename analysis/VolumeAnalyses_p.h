#pragma once

#include <analysis/AnalysisIdentifiers.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqAnalysisExtension.h>

#include <QCoreApplication>

/** An analysis of opened volumes. */
class VolumeAnalysis : public LyqAnalysisExtension {
public:
    using LyqAnalysisExtension::LyqAnalysisExtension;

    bool accepts(const LyrObject* document) const override {
        return dynamic_cast<const LyrVolumeObject*>(document) != nullptr;
    }
};

/** Offers LyrDefectAnalysis. */
class DefectVolumeAnalysis : public VolumeAnalysis {
    Q_DECLARE_TR_FUNCTIONS(DefectVolumeAnalysis)

public:
    DefectVolumeAnalysis()
        : VolumeAnalysis(QString::fromUtf8("defect-volume"), tr("Defect volume"), LYS_ANALYSIS_MODULE) {}
    std::unique_ptr<LyqAnalysisRun> createRun(LyrObject* document, QString& message) override;
};

/** Offers LyrWallThickness. */
class WallThicknessAnalysis : public VolumeAnalysis {
    Q_DECLARE_TR_FUNCTIONS(WallThicknessAnalysis)

public:
    WallThicknessAnalysis()
        : VolumeAnalysis(QString::fromUtf8("wall-thickness"), tr("Wall thickness"), LYS_ANALYSIS_MODULE) {}
    std::unique_ptr<LyqAnalysisRun> createRun(LyrObject* document, QString& message) override;
};
