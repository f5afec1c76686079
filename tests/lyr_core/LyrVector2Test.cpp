#include <lyr_core/LyrVector2.h>

#include <limits>

#include <gtest/gtest.h>

namespace {

TEST(LyrVector2, the_default_is_zero) {
    EXPECT_EQ(LyrVector2<float>(), LyrVector2<float>(0, 0));
    EXPECT_EQ(LyrVector2<float>::ZERO(), LyrVector2<float>(0, 0));
}

TEST(LyrVector2, the_components_are_reached_by_index) {
    LyrVector2<float> v(1, 2);
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[1], 2);
    v[1] = 5;
    EXPECT_EQ(v, LyrVector2<float>(1, 5));
    EXPECT_EQ(&v.y, &v.x + 1);
}

TEST(LyrVector2, sums_and_multiples_work_by_component) {
    const LyrVector2<float> a(1, -2), b(0.5F, 4);
    EXPECT_EQ(a + b, LyrVector2<float>(1.5F, 2));
    EXPECT_EQ(a - b, LyrVector2<float>(0.5F, -6));
    EXPECT_EQ(a * 3.0F, LyrVector2<float>(3, -6));
    EXPECT_EQ(3.0F * a, LyrVector2<float>(3, -6));
}

TEST(LyrVector2, similar_vectors_differ_by_at_most_eps_in_every_component) {
    const LyrVector2<float> v(1, 2);
    EXPECT_TRUE(v.isSimilar({1.5F, 1.5F}, 0.5F));
    EXPECT_FALSE(v.isSimilar({1.75F, 2}, 0.5F));
    EXPECT_FALSE(v.isSimilar({1, 1.25F}, 0.5F));
    EXPECT_TRUE(v.isSimilar(v, 0));
}

TEST(LyrVector2, a_nan_is_similar_to_nothing_and_an_infinity_to_itself) {
    const float nanValue = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_FALSE(LyrVector2<float>(nanValue, 0).isSimilar({nanValue, 0}, 1));
    EXPECT_FALSE(LyrVector2<float>(0, 0).isSimilar({0, nanValue}, infinity));
    EXPECT_TRUE(LyrVector2<float>(infinity, 0).isSimilar({infinity, 0}, 0));
    EXPECT_FALSE(LyrVector2<float>(infinity, 0).isSimilar({-infinity, 0}, 1));
}

TEST(LyrVector2, plain_comparison_treats_both_zeros_alike_and_nan_as_nothing) {
    const float nanValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(LyrVector2<float>(0.0F, 1) == LyrVector2<float>(-0.0F, 1));
    EXPECT_FALSE(LyrVector2<float>(nanValue, 1) == LyrVector2<float>(nanValue, 1));
}

}  // namespace
