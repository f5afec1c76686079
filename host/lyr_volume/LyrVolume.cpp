#include <lyr_volume/LyrVolume.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

LyrVolume::ValueRange rangeOf(std::span<const float> samples) {
    LyrVolume::ValueRange range;
    for (const float value : samples) {
        if (!std::isfinite(value)) {
            continue;
        }
        range.low = std::min(range.low, value);
        range.high = std::max(range.high, value);
    }
    return range;
}

/** The product of the sizes equals the number of samples; divides instead of multiplying, so nothing overflows. */
bool sizesMatch(const LyrVolume::Size& size, std::size_t count) {
    std::uint64_t rest = count;
    for (const std::int64_t length : size) {
        if (length < 1 || rest % static_cast<std::uint64_t>(length) != 0) {
            return false;
        }
        rest /= static_cast<std::uint64_t>(length);
    }
    return rest == 1;
}

}  // namespace

LyrVolume::LyrVolume(Description&& description, std::vector<float>&& samples)
    : description_(std::move(description)), samples_(std::move(samples)), range_(rangeOf(samples_)) {}

std::shared_ptr<const LyrVolume> LyrVolume::create(Description description, std::vector<float>&& samples) {
    const bool spacingUsable = std::all_of(description.spacing.begin(), description.spacing.end(),
                                           [](double s) { return std::isfinite(s) && s > 0.0; });
    if (!spacingUsable || !sizesMatch(description.size, samples.size())) {
        return nullptr;
    }
    return std::shared_ptr<const LyrVolume>(new LyrVolume(std::move(description), std::move(samples)));
}

bool LyrVolume::slice(Axis axis, std::int64_t index, std::span<float> out) const {
    const std::int64_t width = sliceWidth(axis);
    const std::int64_t height = sliceHeight(axis);
    if (index < 0 || index >= sliceCount(axis) || out.size() != static_cast<std::size_t>(width * height)) {
        return false;
    }
    const std::int64_t nx = size()[0];
    const std::int64_t plane = nx * size()[1];
    const float* first = samples_.data();
    for (std::int64_t row = 0; row < height; ++row) {
        float* target = out.data() + row * width;
        if (axis == Axis::X) {
            const float* source = first + index + plane * row;
            for (std::int64_t column = 0; column < width; ++column) {
                target[column] = source[column * nx];
            }
        } else {
            const float* source = axis == Axis::Y ? first + plane * row + nx * index : first + plane * index + nx * row;
            std::copy_n(source, width, target);
        }
    }
    return true;
}
