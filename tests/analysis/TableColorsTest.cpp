#include <analysis/TableColors.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <cmath>
#include <vector>

namespace {

/** One channel by the rule: truncated, clamped, NaN 0. */
int plainByte(float channel) {
    const float scaled = channel * 255.0f;
    return std::isnan(scaled) || scaled <= 0.0f ? 0 : scaled >= 255.0f ? 255 : int(scaled);
}

}  // namespace

TEST(TableColors, each_value_becomes_the_bytes_of_its_color) {
    const LyrObjectPtr object(new LyrColorLookupTable);
    const auto& table = static_cast<LyrColorLookupTable&>(*object);
    std::vector<float> values;
    for (int i = 0; i < 10001; ++i) {
        values.push_back(-1.5f + 3.0f * float(i) / 10000.0f);
    }
    std::vector<std::uint8_t> bytes(values.size() * 4, 99);
    lysColorBytes(table, values, bytes, 0.5f);
    for (std::size_t i = 0; i < values.size(); ++i) {
        LyrRGBA<float> color;
        ASSERT_TRUE(table.getColor(values[i], color));
        ASSERT_EQ(bytes[4 * i], plainByte(color.red)) << values[i];
        ASSERT_EQ(bytes[4 * i + 1], plainByte(color.green));
        ASSERT_EQ(bytes[4 * i + 2], plainByte(color.blue));
        ASSERT_EQ(bytes[4 * i + 3], plainByte(color.alpha * 0.5f));
    }
}

TEST(TableColors, a_table_that_colors_nothing_leaves_all_transparent) {
    const LyrObjectPtr object(new LyrColorLookupTable);
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> positions(object.get(), Lyr::PositionList);
    ASSERT_TRUE(positions->removeArrayItems(0, 0));
    std::vector<std::uint8_t> bytes(8, 99);
    const std::vector<float> values{0.0f, 1.0f};
    lysColorBytes(static_cast<LyrColorLookupTable&>(*object), values, bytes, 1.0f);
    EXPECT_EQ(bytes, std::vector<std::uint8_t>(8, 0));
}

TEST(TableColors, no_values_are_no_bytes) {
    const LyrObjectPtr object(new LyrColorLookupTable);
    std::vector<std::uint8_t> bytes;
    lysColorBytes(static_cast<LyrColorLookupTable&>(*object), {}, bytes, 1.0f);
    EXPECT_TRUE(bytes.empty());
}
