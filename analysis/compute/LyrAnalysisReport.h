#pragma once

#include <span>
#include <string>

#include <analysis/compute/LyrDefectResult.h>
#include <analysis/compute/LyrThicknessResult.h>
#include <analysis/compute/LyrVerdict.h>

/** Reports of analyses as CSV and JSON, for programs as much as for people: decimal points, shortest numbers that read
 * back to the same bits, UTF-8.
 *
 *  A CSV file begins with lines "# name,value" (what was analysed, the threshold, the totals), then comes one line of
 *  column names and one line for each defect, or for each bin of the thickness. A JSON file holds the same under the
 *  same names, the rows as a list of objects. `threshold` is the one that was used, to the last digit: samples are
 *  compared in single precision, and one that was typed with more digits was rounded to it. `voxels` and what begins
 * with `counted_` follow from the threshold alone and can be counted again exactly; `volume_mm3` and what follows from
 * it are measured by grey values and are the numbers to judge by. */
class LyrAnalysisReport {
public:
    /** With `verdicts`, one for each defect, each row ends with a `verdict` (pass, warn, fail, or empty for None), and
     *  pass_count, warn_count and fail_count stand among the totals; without, there is nothing of these. */
    static std::string csv(const LyrDefectResult& result, std::span<const LyrVerdict> verdicts = {});
    static std::string json(const LyrDefectResult& result, std::span<const LyrVerdict> verdicts = {});

    /** With `boundaries`, those of a colour table, the rows are its sections, from −infinity to infinity (an empty
     * field in CSV, null in JSON); without, 50 bins of equal width from the least to the greatest thickness. */
    static std::string csv(const LyrThicknessResult& result, std::span<const float> boundaries = {});
    static std::string json(const LyrThicknessResult& result, std::span<const float> boundaries = {});

    /** Writes a report, as CSV or JSON by the ending of the path (.csv, .json). False, with a message, for any other
     *  ending and when the file cannot be written; an older file is then still there, whole. */
    static bool save(const std::string& path, const LyrDefectResult& result, std::string& error,
                     std::span<const LyrVerdict> verdicts = {});
    static bool save(const std::string& path, const LyrThicknessResult& result, std::string& error,
                     std::span<const float> boundaries = {});
};
