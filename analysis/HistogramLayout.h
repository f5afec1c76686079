#pragma once

#include <analysis/LysAnalysisExport.h>

#include <QSize>

#include <span>
#include <vector>

class LyrSortedValues;

/** Where everything of a histogram stands that has the boundaries of a table over it: one bar for each column of
 * pixels.
 *
 *  It shows the range of the values and of the boundaries, but never more than the values' range once more on either
 *  side: a boundary far away leaves the bars wide enough to be seen, and is not shown itself. */
struct LYS_ANALYSIS_EXPORT HistogramLayout {
    double low = 0.0;   ///< value at the left edge
    double high = 0.0;  ///< value at the right edge
    QSize size;
    std::vector<int> bars;   ///< height of each column, pixels; empty where there is nothing to show
    std::vector<int> lines;  ///< columns of the boundaries that lie in the range, ascending, each once

    /** Heights grow with the logarithm of the counts, the largest is the whole height: what is rare stays visible
     *  beside air and material. A column with any value has one pixel at least. Without values, without area, or with
     *  more than a million columns nothing is shown. Boundaries that are not finite are left out.
     *  @param boundaries  ascending */
    static HistogramLayout make(const LyrSortedValues& values, std::span<const float> boundaries, QSize size);

    bool isEmpty() const { return bars.empty(); }
    /** The value in the middle of a column; columns beyond the edges count as the outermost. 0 where nothing is shown.
     */
    float valueAt(int column) const;
};
