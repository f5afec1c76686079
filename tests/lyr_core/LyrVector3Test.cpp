#include <lyr_core/LyrVector3.h>

#include <limits>

#include <gtest/gtest.h>

namespace {

TEST(LyrVector3, the_default_is_zero) {
    EXPECT_EQ(LyrVector3<float>(), LyrVector3<float>(0, 0, 0));
    EXPECT_EQ(LyrVector3<float>::ZERO(), LyrVector3<float>(0, 0, 0));
}

TEST(LyrVector3, the_components_are_reached_by_index) {
    LyrVector3<float> v(1, 2, 3);
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[1], 2);
    EXPECT_EQ(v[2], 3);
    v[2] = 5;
    EXPECT_EQ(v, LyrVector3<float>(1, 2, 5));
    EXPECT_EQ(&v.z, &v.x + 2);
}

TEST(LyrVector3, sums_and_multiples_work_by_component) {
    const LyrVector3<float> a(1, -2, 3), b(0.5F, 4, -1);
    EXPECT_EQ(a + b, LyrVector3<float>(1.5F, 2, 2));
    EXPECT_EQ(a - b, LyrVector3<float>(0.5F, -6, 4));
    EXPECT_EQ(a * 2.0F, LyrVector3<float>(2, -4, 6));
    EXPECT_EQ(2.0F * a, LyrVector3<float>(2, -4, 6));
}

TEST(LyrVector3, similar_vectors_differ_by_at_most_eps_in_every_component) {
    const LyrVector3<float> v(1, 2, 3);
    EXPECT_TRUE(v.isSimilar({1.5F, 1.5F, 3.5F}, 0.5F));
    EXPECT_FALSE(v.isSimilar({1.75F, 2, 3}, 0.5F));
    EXPECT_FALSE(v.isSimilar({1, 2.75F, 3}, 0.5F));
    EXPECT_FALSE(v.isSimilar({1, 2, 2.25F}, 0.5F));
}

TEST(LyrVector3, a_nan_is_similar_to_nothing) {
    const float nanValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(LyrVector3<float>(0, 0, nanValue).isSimilar({0, 0, nanValue}, 1));
    EXPECT_FALSE(LyrVector3<float>(0, 0, nanValue) == LyrVector3<float>(0, 0, nanValue));
}

}  // namespace
