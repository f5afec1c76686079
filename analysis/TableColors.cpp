#include <analysis/TableColors.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrRGBA.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

/** Values a block: their colours stay in the processor's second-level cache. */
constexpr std::size_t BLOCK = 4096;

static_assert(sizeof(LyrRGBA<float>) == 4 * sizeof(float));

/** All channels alike in one flat loop, which compilers turn into vector instructions. */
void toBytes(std::vector<LyrRGBA<float>>& colors, std::size_t count, float opacity, std::uint8_t* bytes) {
    if (opacity != 1.0f) {
        for (std::size_t i = 0; i < count; ++i) {
            colors[i].alpha *= opacity;
        }
    }
    const float* channels = &colors.data()->red;
    for (std::size_t i = 0; i < 4 * count; ++i) {
        const float scaled = channels[i] * 255.0f;
        // In this order a NaN becomes 0.
        const float low = scaled > 0.0f ? scaled : 0.0f;
        bytes[i] = static_cast<std::uint8_t>(static_cast<int>(low < 255.0f ? low : 255.0f));
    }
}

}  // namespace

void lysColorBytes(const LyrColorLookupTable& table, std::span<const float> values, std::span<std::uint8_t> out,
                   float opacity) {
    std::vector<LyrRGBA<float>> colors(std::min(BLOCK, values.size()));
    for (std::size_t begin = 0; begin < values.size(); begin += BLOCK) {
        const std::size_t count = std::min(BLOCK, values.size() - begin);
        if (!table.getColors(static_cast<long long>(count), values.data() + begin, colors.data())) {
            for (std::size_t i = 0; i < count; ++i) {
                if (!table.getColor(values[begin + i], colors[i])) {
                    colors[i] = {};
                }
            }
        }
        toBytes(colors, count, opacity, out.data() + 4 * begin);
    }
}
