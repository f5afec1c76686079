#include <lys_core/LyqAnalysisExtension.h>

LyqAnalysisRun::~LyqAnalysisRun() = default;

std::vector<LyrObjectPtr> LyqAnalysisRun::createLayers() {
    return {};
}

LyqReport LyqAnalysisRun::report() const {
    return {};
}

LyqAnalysisExtension::~LyqAnalysisExtension() = default;
