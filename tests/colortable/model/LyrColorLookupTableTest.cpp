#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <gtest/gtest.h>

TEST(LyrColorLookupTable, a_new_table_shows_violet_below_a_rainbow_and_pink_above) {
    const LyrObjectRefPtr object("LyrColorLookupTable", 1);
    ASSERT_TRUE(object);
    const auto& table = static_cast<const LyrColorLookupTable&>(*object.get());
    LyrRGBA<float> color;
    ASSERT_TRUE(table.getColor(-2.0f, color));
    EXPECT_EQ(color, LyrRGBA<float>(0.6f, 0.0f, 1.0f, 1.0f));
    ASSERT_TRUE(table.getColor(-1.0f, color));
    EXPECT_EQ(color, LyrRGBA<float>(0.0f, 0.0f, 1.0f, 1.0f));
    ASSERT_TRUE(table.getColor(1.0f, color));
    EXPECT_EQ(color, LyrRGBA<float>(1.0f, 0.0f, 0.0f, 1.0f));
    ASSERT_TRUE(table.getColor(2.0f, color));
    EXPECT_EQ(color, LyrRGBA<float>(1.0f, 0.0f, 0.6f, 1.0f));
}

TEST(LyrColorLookupTable, calls_without_values_need_no_memory_and_values_without_memory_fail) {
    const LyrObjectRefPtr object("LyrColorLookupTable", 1);
    const auto& table = static_cast<const LyrColorLookupTable&>(*object.get());
    EXPECT_TRUE(table.getColors(0, nullptr, nullptr));
    EXPECT_TRUE(table.getColors(-3, nullptr, nullptr));
    EXPECT_FALSE(table.getColors(1, nullptr, nullptr));
}
