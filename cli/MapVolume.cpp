#include "MapVolume.h"

#include "Failure.h"
#include "Messages.h"
#include "NrrdHeader.h"
#include "Numbers.h"
#include "Output.h"
#include "PngWriter.h"
#include "SliceNames.h"

#include <algorithm>

namespace lys::cli {

namespace {

using Axis = LyrVolume::Axis;

constexpr std::string_view AXIS_NAMES = "xyz";

std::size_t numberOf(Axis axis) {
    return static_cast<std::size_t>(axis);
}

/** Hands the colours of all values to `use`, block by block. */
template <class Use>
void colorAll(BlockColors& colors, std::span<const float> values, const Use& use) {
    while (!values.empty()) {
        const std::span<const float> block = values.first(std::min(values.size(), BlockColors::BLOCK));
        use(colors.next(block));
        values = values.subspan(block.size());
    }
}

/** One slice after the other as a picture, in memory that is used again. */
class SlicePainter {
public:
    SlicePainter(const LyrVolume& volume, Axis axis, BlockColors& colors)
        : mVolume(volume),
          mAxis(axis),
          mColors(colors),
          mValues(static_cast<std::size_t>(volume.sliceWidth(axis) * volume.sliceHeight(axis))),
          mPixels(mValues.size() * 4) {}

    void paint(std::int64_t slice, Output& output) {
        mVolume.slice(mAxis, slice, mValues);
        auto pixel = mPixels.begin();
        colorAll(mColors, mValues, [&](std::span<const LyrRGBA<float>> block) {
            for (const LyrRGBA<float>& color : block) {
                pixel = std::ranges::copy(toBytes(color), pixel).out;
            }
        });
        writePng(output, mPixels, mVolume.sliceWidth(mAxis), mVolume.sliceHeight(mAxis));
        output.finish();
    }

private:
    const LyrVolume& mVolume;
    Axis mAxis;
    BlockColors& mColors;
    std::vector<float> mValues;
    std::vector<std::uint8_t> mPixels;
};

NrrdAxis axisOf(const LyrVolume& volume, std::size_t axis) {
    return {volume.size()[axis], volume.spacing()[axis], volume.origin()[axis]};
}

}  // namespace

VolumeTask::VolumeTask(const std::optional<std::string>& slice, bool all, const std::string& output)
    : mAll(all), mPicture(output.ends_with(".png")), mOutput(output) {
    if (!mPicture && !output.ends_with(".nrrd")) {
        throwUnusable(output + ": the colours of a volume go into a file *.png or *.nrrd");
    }
    if (all && slice) {
        throwUnusable("--slice and --all exclude each other");
    }
    if (all && mPicture) {
        const SliceNames checked(output);
    }
    if (!all && SliceNames::isPattern(output)) {
        throwUnusable(output + ": a name with a marker for the slice's number needs --all");
    }
    if (slice) {
        parseSlice(*slice);
    }
}

void VolumeTask::parseSlice(const std::string& text) {
    const std::size_t axis = text.empty() ? std::string_view::npos : AXIS_NAMES.find(text[0]);
    const bool formed = axis != std::string_view::npos && text.size() > 2 && text[1] == ':';
    mSlice = formed ? parseCount(std::string_view(text).substr(2)) : std::nullopt;
    if (!mSlice) {
        throwUnusable("--slice " + text + ": give the axis and the slice's number, counted from 0, as in z:12");
    }
    mAxis = static_cast<Axis>(axis);
}

std::int64_t VolumeTask::sliceOf(const LyrVolume& volume) const {
    const std::int64_t count = volume.sliceCount(mAxis);
    const std::int64_t slice = mSlice.value_or(count / 2);
    if (slice >= count) {
        throwUnusable(volume.description().source + ": there is no slice " + std::to_string(slice) + " across " +
                      AXIS_NAMES[numberOf(mAxis)] + "; they are numbered 0 to " + std::to_string(count - 1));
    }
    return slice;
}

void VolumeTask::run(const LyrVolume& volume, BlockColors& colors) const {
    if (!mPicture) {
        writeNrrd(volume, colors);
    } else if (mAll) {
        writePictures(volume, colors);
    } else {
        writePicture(volume, colors);
    }
}

void VolumeTask::writePicture(const LyrVolume& volume, BlockColors& colors) const {
    const std::int64_t slice = sliceOf(volume);
    Output output(mOutput);
    SlicePainter(volume, mAxis, colors).paint(slice, output);
    output.commit();
}

void VolumeTask::writePictures(const LyrVolume& volume, BlockColors& colors) const {
    const SliceNames names(mOutput);
    const std::int64_t count = volume.sliceCount(mAxis);
    SlicePainter painter(volume, mAxis, colors);
    std::vector<Output> outputs;
    Progress progress("colouring");
    for (std::int64_t slice = 0; slice < count; ++slice) {
        outputs.emplace_back(names.name(slice));
        painter.paint(slice, outputs.back());
        progress.show(static_cast<double>(slice + 1), static_cast<double>(count));
    }
    Output::commit(outputs);
}

void VolumeTask::writeNrrd(const LyrVolume& volume, BlockColors& colors) const {
    std::vector<float> copy;
    std::span<const float> values = volume.samples();
    std::vector<NrrdAxis> axes = {axisOf(volume, 0), axisOf(volume, 1), axisOf(volume, 2)};
    if (!mAll) {
        copy.resize(static_cast<std::size_t>(volume.sliceWidth(mAxis) * volume.sliceHeight(mAxis)));
        volume.slice(mAxis, sliceOf(volume), copy);
        values = copy;
        axes.erase(axes.begin() + static_cast<std::ptrdiff_t>(numberOf(mAxis)));
    }
    Output output(mOutput);
    Progress progress("colouring");
    const std::string header = nrrdHeader(axes, volume.unit());
    output.write(std::as_bytes(std::span(header)));
    std::size_t done = 0;
    colorAll(colors, values, [&](std::span<const LyrRGBA<float>> block) {
        output.write(std::as_bytes(block));
        progress.show(static_cast<double>(done += block.size()), static_cast<double>(values.size()));
    });
    output.commit();
}

}  // namespace lys::cli
