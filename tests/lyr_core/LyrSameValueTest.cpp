#include <lyr_core/LyrSameValue.h>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr float nanValue = std::numeric_limits<float>::quiet_NaN();

TEST(LyrSameValue, every_nan_is_the_same_value_as_every_other) {
    EXPECT_TRUE(lyrSameValue(nanValue, nanValue));
    EXPECT_TRUE(lyrSameValue(nanValue, -nanValue));
    EXPECT_TRUE(lyrSameValue(std::nan("1"), std::nan("2")));
    EXPECT_FALSE(lyrSameValue(nanValue, 0.0F));
    EXPECT_FALSE(lyrSameValue(0.0F, nanValue));
}

TEST(LyrSameValue, the_two_zeros_are_different_values) {
    EXPECT_FALSE(lyrSameValue(0.0F, -0.0F));
    EXPECT_FALSE(lyrSameValue(-0.0, 0.0));
    EXPECT_TRUE(lyrSameValue(-0.0F, -0.0F));
}

TEST(LyrSameValue, numbers_are_the_same_only_when_equal) {
    EXPECT_TRUE(lyrSameValue(1.5F, 1.5F));
    EXPECT_FALSE(lyrSameValue(1.0F, std::nextafter(1.0F, 2.0F)));
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(lyrSameValue(infinity, infinity));
    EXPECT_FALSE(lyrSameValue(infinity, -infinity));
    EXPECT_TRUE(lyrSameValue(3LL, 3LL));
    EXPECT_FALSE(lyrSameValue(3LL, 4LL));
    EXPECT_FALSE(lyrSameValue(true, false));
}

TEST(LyrSameValue, composed_values_follow_the_rule_in_every_component) {
    EXPECT_TRUE(lyrSameValue(LyrValuePair<float>(nanValue, 1), LyrValuePair<float>(nanValue, 1)));
    EXPECT_FALSE(lyrSameValue(LyrValuePair<float>(1, 0.0F), LyrValuePair<float>(1, -0.0F)));
    EXPECT_FALSE(lyrSameValue(LyrValuePair<float>(-0.0F, 1), LyrValuePair<float>(0.0F, 1)));
    EXPECT_TRUE(lyrSameValue(LyrVector2<float>(nanValue, -0.0F), LyrVector2<float>(nanValue, -0.0F)));
    EXPECT_FALSE(lyrSameValue(LyrVector2<float>(0.0F, 0.0F), LyrVector2<float>(0.0F, -0.0F)));
    EXPECT_FALSE(lyrSameValue(LyrVector2<float>(-0.0F, 0.0F), LyrVector2<float>(0.0F, 0.0F)));
    EXPECT_TRUE(lyrSameValue(LyrVector3<float>(1, 2, nanValue), LyrVector3<float>(1, 2, nanValue)));
    for (int i = 0; i < 3; ++i) {
        LyrVector3<float> changed;
        changed[i] = -0.0F;
        EXPECT_FALSE(lyrSameValue(LyrVector3<float>(), changed)) << i;
    }
    const LyrRGBAf base(0, 0, 0, 0);
    EXPECT_TRUE(lyrSameValue(base, base));
    EXPECT_FALSE(lyrSameValue(base, LyrRGBAf(-0.0F, 0, 0, 0)));
    EXPECT_FALSE(lyrSameValue(base, LyrRGBAf(0, -0.0F, 0, 0)));
    EXPECT_FALSE(lyrSameValue(base, LyrRGBAf(0, 0, -0.0F, 0)));
    EXPECT_FALSE(lyrSameValue(base, LyrRGBAf(0, 0, 0, -0.0F)));
    EXPECT_TRUE(lyrSameValue(LyrRGBAf(nanValue, 0, 0), LyrRGBAf(nanValue, 0, 0)));
}

TEST(LyrSameValue, a_null_text_is_another_value_than_an_empty_one) {
    EXPECT_FALSE(lyrSameValue(LyrString(), LyrString("")));
    EXPECT_TRUE(lyrSameValue(LyrString("a"), LyrString("a")));
    const char* const none = nullptr;
    const char text[] = "abc";
    const char copy[] = "abc";
    EXPECT_TRUE(lyrSameValue(static_cast<const char*>(text), static_cast<const char*>(copy)));
    EXPECT_TRUE(lyrSameValue(none, none));
    EXPECT_FALSE(lyrSameValue(none, static_cast<const char*>("")));
    EXPECT_FALSE(lyrSameValue(static_cast<const char*>("a"), none));
    EXPECT_FALSE(lyrSameValue(static_cast<const char*>("a"), static_cast<const char*>("b")));
}

}  // namespace
