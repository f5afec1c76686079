#include "LegendView.h"
#include "scarce/ScarceMemory.h"

#include <colortable/viewport/LyrColorTableCameraRoleHook.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace legends;

namespace {

constexpr int ALLOCATION_FAILED = static_cast<int>(0xF3CB0006u);

}  // namespace

TEST(LegendMemory, a_handler_without_memory_for_its_private_part_says_so_and_is_there) {
    LyrColorLookupTableAnnotationHandler::metaClass();
    const Errors errors;
    int reported = 0;
    for (long long n = 0; n < 8; ++n) {
        const auto before = errors.codes.size();
        LyrObjectPtr handler;
        bool failed = false;
        {
            const ScarceMemory scarce(n);
            handler = LyrObjectPtr(new LyrColorLookupTableAnnotationHandler);
            failed = scarce.hasFailed();
        }
        if (handler && failed) {
            ASSERT_EQ(errors.codes.size(), before + 1);
            EXPECT_EQ(errors.codes.back(), ALLOCATION_FAILED);
            EXPECT_EQ(handler->getProtectedFlags(), 0x110100u);
            ++reported;
        } else {
            EXPECT_EQ(errors.codes.size(), before);
        }
    }
    EXPECT_EQ(reported, 1);
}

TEST(LegendMemory, hooks_come_and_go_without_memory) {
    LyqApplication::instance();
    std::vector<LyrObjectPtr> cameras;
    for (int i = 0; i < 3; ++i) {
        cameras.emplace_back(new LyrCamera);
        cameras.back()->prepareRoles();
    }
    Errors errors;
    errors.codes.reserve(100000);  // to hear of them needs no memory
    int failures = 0;
    bool hasFailed = true;
    for (long long n = 0; n < 200; ++n) {
        hasFailed = false;
        for (const auto how : {ScarceMemory::Failing::Once, ScarceMemory::Failing::ForGood}) {
            std::unique_ptr<LyrColorTableCameraRoleHook> hook;
            {
                const ScarceMemory scarce(n, how);
                hook.reset(new (std::nothrow) LyrColorTableCameraRoleHook);
                hasFailed = hasFailed || scarce.hasFailed();
            }
            {
                const ScarceMemory scarce(n, how);
                hook.reset();
                hasFailed = hasFailed || scarce.hasFailed();
            }
            // What was left behind for want of memory goes with the next hook.
            { const LyrColorTableCameraRoleHook again; }
            for (const LyrObjectPtr& camera : cameras) {
                ASSERT_FALSE(rendererOf(camera.get())) << n;
            }
        }
        failures += hasFailed ? 1 : 0;
    }
    EXPECT_GT(failures, 10);
    EXPECT_FALSE(hasFailed) << "no end";
    EXPECT_TRUE(std::all_of(errors.codes.begin(), errors.codes.end(), [](int code) {
        return code == ALLOCATION_FAILED || code == static_cast<int>(Lyr::Failed);
    }));
}
