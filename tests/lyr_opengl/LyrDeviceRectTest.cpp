#include <lyr_opengl/LyrDeviceRect.h>

#include <gtest/gtest.h>

#include <limits>

using namespace LyrRendering;

TEST(LyrDeviceRect, an_empty_rectangle_survives_every_operation) {
    const DeviceRect some{{-0.5f, -0.5f}, {0.5f, 0.5f}};
    EXPECT_TRUE(isEmpty(emptyRect()));
    EXPECT_TRUE(isEmpty(enlarge(emptyRect(), 1000.0f)));
    EXPECT_TRUE(isEmpty(unite(emptyRect(), emptyRect())));
    EXPECT_TRUE(isEmpty(intersect(emptyRect(), some)));
    EXPECT_TRUE(isEmpty(intersect(some, emptyRect())));
    EXPECT_EQ(unite(emptyRect(), some).first, some.first);
    EXPECT_EQ(unite(some, emptyRect()).second, some.second);
}

TEST(LyrDeviceRect, a_rectangle_with_nan_is_empty) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(isEmpty({{nan, 0.0f}, {1.0f, 1.0f}}));
    EXPECT_TRUE(isEmpty({{0.0f, 0.0f}, {1.0f, nan}}));
    EXPECT_TRUE(isEmpty(enlarge({{nan, nan}, {nan, nan}}, 0.1f)));
}

TEST(LyrDeviceRect, rectangles_unite_grow_and_intersect) {
    const DeviceRect left{{-0.75f, -0.5f}, {-0.25f, 0.0f}};
    const DeviceRect right{{-0.5f, -0.25f}, {0.5f, 2.0f}};
    const DeviceRect both = unite(left, right);
    EXPECT_EQ(both.first, LyrVector2<float>(-0.75f, -0.5f));
    EXPECT_EQ(both.second, LyrVector2<float>(0.5f, 2.0f));
    const DeviceRect common = intersect(left, right);
    EXPECT_EQ(common.first, LyrVector2<float>(-0.5f, -0.25f));
    EXPECT_EQ(common.second, LyrVector2<float>(-0.25f, 0.0f));
    EXPECT_TRUE(isEmpty(intersect(left, {{0.0f, 0.0f}, {1.0f, 1.0f}})));
    EXPECT_EQ(enlarge(left, 0.25f).first, LyrVector2<float>(-1.0f, -0.75f));
    EXPECT_EQ(intersect(both, deviceSquare()).second, LyrVector2<float>(0.5f, 1.0f));
}
