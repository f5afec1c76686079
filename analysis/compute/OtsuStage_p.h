#pragma once

#include <optional>

#include <lyr_volume/LyrVolume.h>

#include <analysis/compute/AnalysisTask_p.h>

namespace lyranalysis {

/** Weight of the stage in a task. */
inline constexpr double kOtsuWeight = 1.0;

/** LyrOtsuThreshold as a stage of a longer task. */
bool findOtsuThreshold(const LyrVolume& volume, AnalysisTask& task, float& threshold);

/** The given threshold, or Otsu's; false, with a message, where the given one is no number. */
bool chooseThreshold(const LyrVolume& volume, const std::optional<float>& given, AnalysisTask& task, float& threshold);

}  // namespace lyranalysis
