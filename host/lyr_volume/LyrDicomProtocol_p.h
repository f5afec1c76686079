#pragma once

#include <cstdint>

namespace lyrvolume {

// What the reader and its decoder process say to each other over a socket. Both run on one machine and are built
// together.

/** A request is the length of a DICOM file, then the file. */
struct DicomRequest {
    std::uint64_t length = 0;
};

/** An answer, then `length` bytes: samples in this machine's byte order, or the text of what went wrong. */
struct DicomAnswer {
    std::uint32_t good = 0;
    std::uint32_t type = 0;  ///< a SampleType
    std::uint64_t columns = 0;
    std::uint64_t rows = 0;
    std::uint64_t length = 0;
};

}  // namespace lyrvolume
