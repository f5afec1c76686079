#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** What one page of a TIFF file says about itself; the defaults are those of the format. */
struct TiffPage {
    std::uint64_t place = 0;  ///< of its directory in the file
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    std::uint64_t bits = 1;          ///< of one sample
    std::uint64_t samples = 1;       ///< for each pixel
    std::uint64_t sampleFormat = 1;  ///< 1 unsigned, 2 signed, 3 floating point
    std::uint64_t compression = 1;   ///< 1 none
    std::uint64_t photometric = 1;   ///< 0 white is zero, 1 black is zero
    std::uint64_t rowsPerStrip = ~std::uint64_t{0};
    std::uint64_t tileWidth = 0;  ///< 0: in strips
    std::uint64_t tileHeight = 0;
    std::uint64_t subfile = 0;               ///< bit 0: a smaller copy of another page
    std::array<double, 2> resolution{0, 0};  ///< pixels along x and y in a unit
    std::uint64_t resolutionUnit = 2;        ///< 1 none, 2 inch, 3 cm
    std::string description;
    std::vector<std::uint64_t> dataPlaces;   ///< of strips or tiles
    std::vector<std::uint64_t> dataLengths;  ///< stored bytes of each

    bool tiled() const { return tileWidth != 0; }
};

/** Walks through all pages of a file and checks that every directory, every value and every strip or tile lies in the
 *  file and that there are as many as the size needs. */
bool readTiffPages(const InputFile& file, std::vector<TiffPage>& pages, ReadContext& context);

}  // namespace lyrvolume
