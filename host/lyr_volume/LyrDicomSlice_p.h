#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** A piece of a file. */
struct FilePart {
    std::uint64_t place = 0;
    std::uint64_t length = 0;
};

/** Where the pixels of a DICOM file lie and how they are stored. */
struct DicomPixelLayout {
    std::uint64_t rows = 0;
    std::uint64_t columns = 0;
    std::uint64_t frames = 1;
    std::uint64_t samples = 1;
    std::uint64_t bitsAllocated = 0;
    std::uint64_t bitsStored = 0;
    std::uint64_t highBit = 0;
    bool isSigned = false;
    bool bigEndian = false;
    bool swappedBytes = false;  ///< single bytes that were written as 16-bit words, most significant byte first
    double slope = 1.0;
    double intercept = 0.0;
    std::string photometric;
    bool present = false;
    FilePart native;                     ///< uncompressed pixels
    std::vector<FilePart> fragments;     ///< compressed pixels, without the table of offsets
    std::vector<std::uint64_t> offsets;  ///< of the frames from the first fragment's item on, where they are stated

    bool compressed() const { return !fragments.empty(); }
};

/** What one DICOM file says about its image, and whether its pixel data are all there. */
struct DicomSlice {
    std::string path;
    std::string problem;   ///< why the file is unusable; empty if it is not
    bool noImage = false;  ///< a whole file of another kind: a report, a plan, a directory
    std::string sopClass;
    std::string transferSyntax;
    std::string series;                            ///< its UID
    std::string description;                       ///< of the series, for people
    std::vector<std::array<double, 3>> positions;  ///< of the first sample, mm; for each frame that states one
    std::optional<std::array<double, 6>> orientation;
    std::optional<std::array<double, 2>> pixelSpacing;  ///< between rows, between columns
    std::optional<double> sliceSpacing;
    std::optional<double> sliceThickness;
    std::optional<std::int64_t> instance;
    DicomPixelLayout pixels;
};

/** Reads the data set of one file up to its end. Whatever is wrong with it is written into `problem`. */
DicomSlice scanDicomFile(const std::string& path);

class DicomDecoder;

/** Appends the samples of all frames of a file, slope and intercept applied. False with a message in the context. */
bool readDicomPixels(const DicomSlice& slice, DicomDecoder& decoder, std::vector<float>& out, ReadContext& context);

}  // namespace lyrvolume
