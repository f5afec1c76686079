#pragma once

#include "BlockColors.h"

#include <lyr_volume/LyrVolume.h>

#include <cstdint>
#include <optional>
#include <string>

namespace lys::cli {

/** What of a volume is coloured, and into which file: one slice as PNG or NRRD, or all slices across z, as PNG files of
 * a numbered name or as one NRRD file. */
class VolumeTask {
public:
    /** Reads the options: `slice` as "x:N", "y:N" or "z:N" (without it the middle across z), or all. Throws Failure
     * (Unusable) for what cannot be meant, before any volume is looked at. */
    VolumeTask(const std::optional<std::string>& slice, bool all, const std::string& output);

    /** Throws Failure (Unusable) if the volume has no such slice. */
    void check(const LyrVolume& volume) const { sliceOf(volume); }

    /** Throws Failure (Failed) for colours that cannot be formed and outputs that cannot be written. */
    void run(const LyrVolume& volume, BlockColors& colors) const;

private:
    void parseSlice(const std::string& text);
    std::int64_t sliceOf(const LyrVolume& volume) const;
    void writePicture(const LyrVolume& volume, BlockColors& colors) const;
    void writePictures(const LyrVolume& volume, BlockColors& colors) const;
    void writeNrrd(const LyrVolume& volume, BlockColors& colors) const;

    LyrVolume::Axis mAxis = LyrVolume::Axis::Z;
    std::optional<std::int64_t> mSlice;
    bool mAll;
    bool mPicture;
    std::string mOutput;
};

}  // namespace lys::cli
