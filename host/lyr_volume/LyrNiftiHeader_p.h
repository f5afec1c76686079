#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

constexpr std::size_t kNiftiFirstBytes = 348;   ///< header of version 1
constexpr std::size_t kNiftiSecondBytes = 540;  ///< header of version 2

/** What the first bytes of a file say: version 0 for no NIfTI. */
struct NiftiKind {
    int version = 0;
    bool bigEndian = false;
    bool single = false;  ///< header and data in one file
};

NiftiKind niftiKind(std::span<const unsigned char> bytes);

/** The fields of either version that matter here, as stored. */
struct NiftiHeader {
    NiftiKind kind;
    bool gzip = false;
    std::array<std::int64_t, 8> dim{};  ///< number of axes, then sizes
    std::array<double, 8> pixdim{};
    int intent = 0;
    int datatype = 0;
    int bitpix = 0;
    double dataPlace = 0.0;
    double slope = 0.0;
    double intercept = 0.0;
    int units = 0;
    int qform = 0;
    int sform = 0;
    std::array<double, 3> qoffset{};
    std::array<double, 3> soffset{};
};

bool readNiftiHeader(const std::string& path, NiftiHeader& header, ReadContext& context);

}  // namespace lyrvolume
