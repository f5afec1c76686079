#include <lyr_core/LyrColorMode.h>

#include <gtest/gtest.h>

namespace {

TEST(LyrColorMode, the_mode_is_off_until_it_is_switched_on) {
    EXPECT_FALSE(LyrColorMode::isClamped());
    LyrColorMode::setClamped(true);
    EXPECT_TRUE(LyrColorMode::isClamped());
    LyrColorMode::setClamped(false);
    EXPECT_FALSE(LyrColorMode::isClamped());
}

}  // namespace
