#pragma once

#include "ProgramRun.h"

#include <string>
#include <vector>

/// NRRD files written by the tests: raw little-endian floats.
namespace volume_file {

inline std::string header(const std::string& sizes, const std::string& more = "spacings: 0.5 1 2\n",
                          int dimension = 3) {
    return "NRRD0004\ntype: float\ndimension: " + std::to_string(dimension) + "\nsizes: " + sizes + "\n" + more +
           "encoding: raw\nendian: little\n\n";
}

/// 4 x 3 x 2 voxels: the value of (x, y, z) is x + 10 y + 100 z.
inline float valueAt(int x, int y, int z) {
    return float(x + 10 * y + 100 * z);
}

inline std::string counting() {
    std::vector<float> values;
    for (int z = 0; z < 2; ++z)
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 4; ++x)
                values.push_back(valueAt(x, y, z));
    return header("4 3 2") + bytesOf(values);
}

}  // namespace volume_file
