#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** What one DICOM file says about its image, and whether its pixel data are all there. */
struct DicomSlice {
    std::string path;
    std::string problem;   ///< why the file is unusable; empty if it is not
    bool noImage = false;  ///< a whole file of another kind: a report, a plan, a directory
    std::string sopClass;
    std::string transferSyntax;
    std::string series;       ///< its UID
    std::string description;  ///< of the series, for people
    std::uint64_t rows = 0;
    std::uint64_t columns = 0;
    std::uint64_t frames = 1;
    std::uint64_t samples = 1;
    std::uint64_t bits = 0;  ///< allocated for each sample
    std::string photometric;
    std::optional<std::array<double, 3>> position;
    std::optional<std::array<double, 6>> orientation;
    std::optional<std::array<double, 2>> pixelSpacing;  ///< between rows, between columns
    std::optional<double> sliceSpacing;
    std::optional<double> sliceThickness;
    std::optional<std::int64_t> instance;
    bool hasPixels = false;
};

/** Reads the data set of one file up to its end. Whatever is wrong with it is written into `problem`. */
DicomSlice scanDicomFile(const std::string& path);

/** Decoded frames of a file, and the geometry that ITK gives it. */
struct DicomPixels {
    std::array<double, 3> spacing{1.0, 1.0, 1.0};
    std::array<double, 3> origin{0.0, 0.0, 0.0};
    std::string typeName;
};

/** Appends the samples of a file by ITK, slope and intercept applied. False with a message in the context. */
bool decodeDicomFile(const DicomSlice& slice, std::vector<float>& out, DicomPixels& pixels, ReadContext& context);

}  // namespace lyrvolume
