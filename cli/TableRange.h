#pragma once

#include <colortable/model/LyrColorLookupTable.h>

#include <string>

namespace lys::cli {

/** The range of values that a table is stretched over. */
struct TableRange {
    bool automatic = false;  ///< the range of the data
    double low = 0.0;
    double high = 0.0;

    /** Reads "auto" or "A,B". Throws Failure (Unusable) for other texts, for A >= B and for bounds beyond a float. */
    static TableRange parse(const std::string& text);

    /** Moves the table's positions linearly from [first, last] to [low, high]: low + (p - first) · (high - low) / (last
     * - first) in double, narrowed to float once; first and last come to lie on low and high exactly. Throws Failure
     * (Unusable) for a table without an extent. `automatic` must have been settled before. */
    void apply(LyrColorLookupTable& table) const;
};

}  // namespace lys::cli
