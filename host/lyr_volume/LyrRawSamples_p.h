#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <lyr_volume/LyrReadContext_p.h>
#include <lyr_volume/LyrSampleType_p.h>

namespace lyrvolume {

enum class Encoding { Raw, Deflate, Text, Hex };

/** One file with samples, or the part of it that holds them. */
struct DataFile {
    std::string path;
    std::uint64_t place = 0;  ///< first stored byte of the data
    std::uint64_t skip = 0;   ///< bytes to leave out once decoded
    bool atEnd = false;       ///< raw only: the data are the last bytes of the file, `place` and `skip` unused
    std::uint64_t storedLength = ~std::uint64_t{0};  ///< most bytes that a compressed stream may take
};

/** Where the samples of a volume lie and how they are stored. The files share the data in equal parts. */
struct RawLayout {
    std::string header;  ///< path of the header, for messages
    std::vector<DataFile> files;
    Encoding encoding = Encoding::Raw;
    SampleFormat format;
    std::array<std::uint64_t, 3> size{1, 1, 1};
    std::uint64_t interleaved = 1;  ///< frames whose samples alternate, sample by sample
    std::uint64_t frames = 1;       ///< frames one behind the other
    bool surplusMeansCut = false;   ///< data beyond the claimed size show that the header itself was cut off
};

/** Product of sizes, or false with a message when one is 0 or the product is beyond what 64 bits or the memory of this
 *  machine hold (counting four bytes in memory for each voxel). */
bool countVoxels(const std::string& place, const std::array<std::uint64_t, 3>& size, std::uint64_t& count,
                 ReadContext& context);

/** "16 × 12 × 9" */
std::string sizeText(const std::array<std::uint64_t, 3>& size);

/** Checks that all the data are there, then reads the first frame; compressed data are read to their end. */
bool readRawSamples(const RawLayout& layout, std::vector<float>& out, ReadContext& context);

}  // namespace lyrvolume
