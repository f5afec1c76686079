#include <ToolkitApplication.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <workbench/LyrGreyLayer.h>

#include <cmath>
#include <limits>

namespace {

/** A layer over a volume of 2 × 1 × 1 voxels. */
struct GreyLayer {
    GreyLayer(float a, float b) {
        LyrVolume::Description description;
        description.size = {2, 1, 1};
        document = LyrObjectPtr(new LyrVolumeObject(LyrVolume::create(description, {a, b}), "", ""));
        object = LyrObjectPtr(new LyrGreyLayer(static_cast<LyrVolumeObject*>(document.get())));
    }
    LyrGreyLayer& layer() { return static_cast<LyrGreyLayer&>(*object); }
    LyrObjectPtr document, object;
};

}  // namespace

TEST(LyrGreyLayer, its_first_window_is_the_value_range) {
    GreyLayer made(-10.0f, 30.0f);
    EXPECT_EQ(made.layer().low(), -10.0f);
    EXPECT_EQ(made.layer().high(), 30.0f);
}

TEST(LyrGreyLayer, a_volume_of_one_value_or_none_gets_a_window_around_it) {
    GreyLayer constant(5.0f, 5.0f);
    EXPECT_EQ(constant.layer().low(), 4.5f);
    EXPECT_EQ(constant.layer().high(), 5.5f);
    GreyLayer none(NAN, NAN);
    EXPECT_EQ(none.layer().low(), -0.5f);
    EXPECT_EQ(none.layer().high(), 0.5f);
}

TEST(LyrGreyLayer, values_become_grey_between_black_and_white) {
    GreyLayer made(0.0f, 100.0f);
    EXPECT_EQ(made.layer().grey(-5.0f), 0);
    EXPECT_EQ(made.layer().grey(0.0f), 0);
    EXPECT_EQ(made.layer().grey(20.0f), 51);
    EXPECT_EQ(made.layer().grey(100.0f), 255);
    EXPECT_EQ(made.layer().grey(1e30f), 255);
    EXPECT_EQ(made.layer().grey(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(made.layer().grey(std::numeric_limits<float>::infinity()), 255);
}

TEST(LyrGreyLayer, a_window_that_is_empty_or_not_finite_is_refused) {
    GreyLayer made(0.0f, 100.0f);
    EXPECT_FALSE(made.layer().setWindow(5.0f, 5.0f));
    EXPECT_FALSE(made.layer().setWindow(6.0f, 5.0f));
    EXPECT_FALSE(made.layer().setWindow(NAN, 5.0f));
    EXPECT_FALSE(made.layer().setWindow(0.0f, INFINITY));
    EXPECT_EQ(made.layer().high(), 100.0f);
    EXPECT_TRUE(made.layer().setWindow(5.0f, 6.0f));
    EXPECT_EQ(made.layer().low(), 5.0f);
}
