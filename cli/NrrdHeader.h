#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace lys::cli {

/** One axis of an image in space. */
struct NrrdAxis {
    std::int64_t size;
    double spacing;  ///< distance of neighbouring samples
    double origin;   ///< place of the first sample
};

/** The header of an NRRD file of colours: four little-endian floats (red, green, blue, alpha) for each sample of the
 * axes, the fastest axis first, raw behind the header. `unit` is that of spacing and origin, empty where there is none.
 */
std::string nrrdHeader(const std::vector<NrrdAxis>& axes, const std::string& unit);

}  // namespace lys::cli
