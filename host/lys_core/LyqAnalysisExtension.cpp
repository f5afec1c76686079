#include <lys_core/LyqAnalysisExtension.h>

#include <QCoreApplication>

LyqAnalysisRun::~LyqAnalysisRun() = default;

bool LyqAnalysisRun::setThreshold(std::optional<float> threshold) {
    return !threshold;
}

std::vector<LyrObjectPtr> LyqAnalysisRun::createLayers() {
    return {};
}

LyqReport LyqAnalysisRun::report() const {
    return {};
}

bool LyqAnalysisRun::saveReport(const QString& file, QString& message) const {
    message = QCoreApplication::translate("LyqAnalysisRun", "%1 is not written: the analysis has no report.").arg(file);
    return false;
}

LyqAnalysisExtension::~LyqAnalysisExtension() = default;
