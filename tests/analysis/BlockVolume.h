#pragma once

#include <lyr_volume/LyrVolume.h>

#include <memory>
#include <vector>

/** 12³ voxels of 2 mm with the first one's centre at (10, 20, 30): material (1) but for its outermost voxels, with a
 * hollow of 2 × 1 × 1 voxels from (3, 4, 4) and one of 2 × 2 × 2 from (6, 6, 6). */
inline std::shared_ptr<const LyrVolume> hollowBlock() {
    LyrVolume::Description description;
    description.size = {12, 12, 12};
    description.spacing = {2.0, 2.0, 2.0};
    description.origin = {10.0, 20.0, 30.0};
    const auto between = [](int i, int low, int high) { return i >= low && i <= high; };
    std::vector<float> samples;
    for (int z = 0; z < 12; ++z) {
        for (int y = 0; y < 12; ++y) {
            for (int x = 0; x < 12; ++x) {
                const bool part = between(x, 1, 10) && between(y, 1, 10) && between(z, 1, 10);
                const bool small = between(x, 3, 4) && y == 4 && z == 4;
                const bool large = between(x, 6, 7) && between(y, 6, 7) && between(z, 6, 7);
                samples.push_back(part && !small && !large ? 1.0f : 0.0f);
            }
        }
    }
    return LyrVolume::create(description, std::move(samples));
}
