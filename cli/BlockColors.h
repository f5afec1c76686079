#pragma once

#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrRGBA.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace lys::cli {

/** Colours any number of values a block at a time, in memory that is used again. Together the blocks are one array:
 * they succeed or fail as a whole. */
class BlockColors {
public:
    static constexpr std::size_t BLOCK = 65536;

    /** The table, named for messages; it must outlive this object. Throws Failure (Failed) for a table that is not
     * valid. */
    BlockColors(const LyrColorLookupTable& table, std::string name);

    /** The colours of the next values, at most BLOCK of them; good until the next call. Throws Failure (Failed) where
     * the table has no colour for one of them. */
    std::span<const LyrRGBA<float>> next(std::span<const float> values);

private:
    [[noreturn]] void fail(std::span<const float> values) const;

    const LyrColorLookupTable& mTable;
    std::string mName;
    std::vector<LyrRGBA<float>> mColors;
    std::int64_t mCount = 0;
};

}  // namespace lys::cli
