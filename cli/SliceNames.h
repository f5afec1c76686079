#pragma once

#include <cstdint>
#include <string>

namespace lys::cli {

/** File names for the slices of a volume, from a pattern such as "out-%04d.png": one marker, %d or %4d (filled with
 * blanks) or %04d (filled with zeros), stands for the slice's number; %% is a percent sign. */
class SliceNames {
public:
    /** Throws Failure (Unusable) for a pattern without a marker, with several, or with anything else after a percent
     * sign. */
    explicit SliceNames(const std::string& pattern);

    std::string name(std::int64_t slice) const;

    /** True if a text is a pattern in this sense. */
    static bool isPattern(const std::string& text);

private:
    bool read(const std::string& pattern);

    std::string mBefore;
    std::string mAfter;
    std::size_t mWidth = 0;
    char mFill = ' ';
};

}  // namespace lys::cli
