#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <map>

#include <lyr_volume/LyrDicomDecoder_p.h>
#include <lyr_volume/LyrDicomSlice_p.h>
#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrRawSamples_p.h>

namespace lyrvolume {
namespace {

std::string fileName(const DicomSlice& slice) {
    return std::filesystem::path(slice.path).filename().string();
}

/** The description of a series where it has one, else its UID. */
std::string seriesName(const DicomSlice& slice) {
    return "\"" + (slice.description.empty() ? slice.series : slice.description) + "\"";
}

std::uint64_t sliceCount(const std::vector<DicomSlice>& slices) {
    std::uint64_t count = 0;
    for (const DicomSlice& slice : slices) {
        count += std::max<std::uint64_t>(slice.pixels.frames, 1);
    }
    return count;
}

/** Scans all files and keeps the largest series. Files of unknown series that are damaged stop the reading: they might
 *  belong to it. */
bool chooseSeries(const std::string& source, const std::vector<std::string>& paths, std::vector<DicomSlice>& chosen,
                  ReadContext& context) {
    std::map<std::string, std::vector<DicomSlice>> series;
    for (const std::string& path : paths) {
        DicomSlice slice = scanDicomFile(path);
        if (slice.noImage && paths.size() > 1) {
            context.warn(path, slice.problem + "; it was left out");
            continue;
        }
        if (!slice.problem.empty() && slice.series.empty()) {
            return context.fail(path, slice.problem);
        }
        series[slice.series].push_back(std::move(slice));
        if (!context.advance(0.0)) {
            return false;
        }
    }
    if (series.empty()) {
        return context.fail(source, "holds no DICOM images");
    }
    const auto largest = std::max_element(series.begin(), series.end(), [](const auto& a, const auto& b) {
        return sliceCount(a.second) < sliceCount(b.second);
    });
    chosen = std::move(largest->second);
    if (series.size() > 1) {
        context.warn(source, "holds " + std::to_string(series.size()) + " series; the largest was taken, " +
                                 seriesName(chosen[0]) + " with " + std::to_string(sliceCount(chosen)) + " slices");
    }
    return true;
}

bool near(double a, double b, double tolerance) {
    return std::abs(a - b) <= tolerance;
}

template <std::size_t N>
bool alike(const std::optional<std::array<double, N>>& a, const std::optional<std::array<double, N>>& b,
           double tolerance) {
    if (a.has_value() != b.has_value()) {
        return false;
    }
    for (std::size_t i = 0; a && i < N; ++i) {
        if (!near((*a)[i], (*b)[i], tolerance * std::max(1.0, std::abs((*a)[i])))) {
            return false;
        }
    }
    return true;
}

bool checkAlike(const std::vector<DicomSlice>& slices, ReadContext& context) {
    const DicomSlice& first = slices[0];
    for (const DicomSlice& slice : slices) {
        if (!slice.problem.empty()) {
            return context.fail(slice.path, slice.problem);
        }
        if (slice.pixels.frames > 1 && slices.size() > 1) {
            return context.fail(slice.path, "holds " + std::to_string(slice.pixels.frames) +
                                                " frames beside other files of its series; give this file by itself");
        }
        // A thousandth: headers are written with a few digits.
        if (slice.pixels.rows != first.pixels.rows || slice.pixels.columns != first.pixels.columns ||
            !alike(slice.orientation, first.orientation, 1e-3) ||
            !alike(slice.pixelSpacing, first.pixelSpacing, 1e-3) ||
            slice.positions.empty() != first.positions.empty()) {
            return context.fail(slice.path,
                                "differs from " + fileName(first) +
                                    " in size, spacing or orientation; all slices of a volume must be alike");
        }
    }
    return true;
}

/** A slice and its place along the normal of the slices, in mm. */
struct Placed {
    DicomSlice slice;
    double place = 0.0;
};

/** Distance along the cross product of the row's and the column's direction. */
double placeOf(const std::array<double, 3>& p, const std::array<double, 6>& o) {
    const std::array<double, 3> normal{o[1] * o[5] - o[2] * o[4], o[2] * o[3] - o[0] * o[5], o[0] * o[4] - o[1] * o[3]};
    return normal[0] * p[0] + normal[1] * p[1] + normal[2] * p[2];
}

bool byInstance(const Placed& a, const Placed& b) {
    return a.slice.instance.value_or(0) < b.slice.instance.value_or(0);
}

/** Several slices at one place are frames in time: the first of each place stays. */
void keepFirstFrames(std::vector<Placed>& slices, const std::string& source, ReadContext& context) {
    constexpr double kSamePlace = 1e-3;  // mm
    const std::size_t before = slices.size();
    const auto end = std::unique(slices.begin(), slices.end(),
                                 [](const Placed& a, const Placed& b) { return near(a.place, b.place, kSamePlace); });
    slices.erase(end, slices.end());
    if (slices.size() < before) {
        context.warn(source, "holds " + std::to_string(before) + " slices at " + std::to_string(slices.size()) +
                                 " places; the first frame was taken");
    }
}

/** The usual distance of neighbours, with a warning where a distance is another one. */
double spacingOf(const std::vector<Placed>& slices, const std::string& source, ReadContext& context) {
    std::vector<double> distances;
    for (std::size_t i = 1; i < slices.size(); ++i) {
        distances.push_back(slices[i].place - slices[i - 1].place);
    }
    std::vector<double> sorted = distances;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    const double usual = *middle;
    for (std::size_t i = 0; i < distances.size(); ++i) {
        const std::string between = " between " + fileName(slices[i].slice) + " and " + fileName(slices[i + 1].slice);
        if (distances[i] > 1.5 * usual) {
            context.warn(source, "slices seem to be missing" + between);
        } else if (!near(distances[i], usual, 0.02 * usual)) {
            context.warn(source, "the distance of slices differs" + between);
        }
    }
    return usual;
}

/** Brings the slices into order and finds their distance. */
std::optional<double> arrange(std::vector<Placed>& slices, const std::string& source, ReadContext& context) {
    std::stable_sort(slices.begin(), slices.end(), byInstance);
    const DicomSlice& first = slices[0].slice;
    if (!first.positions.empty() && first.orientation) {
        for (Placed& slice : slices) {
            slice.place = placeOf(slice.slice.positions[0], *slice.slice.orientation);
        }
        std::stable_sort(slices.begin(), slices.end(),
                         [](const Placed& a, const Placed& b) { return a.place < b.place; });
        keepFirstFrames(slices, source, context);
        if (slices.size() > 1) {
            return spacingOf(slices, source, context);
        }
    } else if (slices.size() > 1) {
        context.warn(source, "its slices state no positions; they are taken in the order of their numbers");
    }
    return slices[0].slice.sliceSpacing ? slices[0].slice.sliceSpacing : slices[0].slice.sliceThickness;
}

/** Distance of the frames of one file: of the first two, where they state their positions. */
std::optional<double> frameDistance(const DicomSlice& slice) {
    if (slice.positions.size() == slice.pixels.frames && slice.pixels.frames > 1 && slice.orientation) {
        const double distance =
            placeOf(slice.positions[1], *slice.orientation) - placeOf(slice.positions[0], *slice.orientation);
        if (std::abs(distance) > 1e-3) {
            return std::abs(distance);
        }
    }
    return slice.sliceSpacing ? slice.sliceSpacing : slice.sliceThickness;
}

void describeGeometry(const DicomSlice& first, std::optional<double> distance, LyrVolume::Description& description,
                      ReadContext& context) {
    description.unit = "mm";
    if (first.pixelSpacing) {
        description.spacing[0] = usableSpacing((*first.pixelSpacing)[1], 0, first.path, context);
        description.spacing[1] = usableSpacing((*first.pixelSpacing)[0], 1, first.path, context);
    } else {
        description.unit.clear();
        context.warn(first.path, "states no pixel spacing; distances are counted in pixels");
    }
    if (distance) {
        description.spacing[2] = usableSpacing(*distance, 2, first.path, context);
    } else if (description.size[2] > 1) {
        context.warn(first.path, "states no distance of slices; 1 was taken");
    }
    if (!first.positions.empty()) {
        description.origin = first.positions[0];
    }
    if (first.pixels.photometric.compare(0, 11, "MONOCHROME1") == 0) {
        context.warn(first.path, "shows small values bright; values are left as they are stored");
    }
}

}  // namespace

bool readDicom(const std::string& source, const std::vector<std::string>& paths, Draft& draft, ReadContext& context) {
    std::vector<DicomSlice> chosen;
    if (!chooseSeries(source, paths, chosen, context) || !checkAlike(chosen, context)) {
        return false;
    }
    std::vector<Placed> slices;
    slices.reserve(chosen.size());
    for (DicomSlice& slice : chosen) {
        slices.push_back({std::move(slice)});
    }
    const std::optional<double> distance = arrange(slices, source, context);
    const DicomSlice& first = slices[0].slice;
    const std::array<std::uint64_t, 3> size{first.pixels.columns, first.pixels.rows,
                                            first.pixels.frames > 1 ? first.pixels.frames : slices.size()};
    std::uint64_t voxels = 0;
    if (!countVoxels(source, size, voxels, context)) {
        return false;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        draft.description.size[i] = static_cast<std::int64_t>(size[i]);
    }
    draft.samples.reserve(voxels);
    DicomDecoder decoder;
    for (std::size_t i = 0; i < slices.size(); ++i) {
        if (!readDicomPixels(slices[i].slice, decoder, draft.samples, context) ||
            !context.advance(static_cast<double>(i + 1) / static_cast<double>(slices.size()))) {
            return false;
        }
    }
    describeGeometry(first, first.pixels.frames > 1 ? frameDistance(first) : distance, draft.description, context);
    draft.description.format = "DICOM, " + std::string(first.pixels.isSigned ? "int" : "uint") +
                               std::to_string(first.pixels.bitsAllocated) + ", " + std::to_string(size[2]) + " slices";
    return true;
}

}  // namespace lyrvolume
