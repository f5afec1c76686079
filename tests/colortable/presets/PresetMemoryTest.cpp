#include "PresetTools.h"
#include "scarce/ScarceMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>

using namespace presets;

namespace {

constexpr int ALLOCATION_FAILED = static_cast<int>(0xF3CB0006u);
/** More allocations than making a handler takes. */
constexpr int ALLOCATIONS = 60;

/** A new handler while one allocation fails; null where the memory for the object itself or its base was missing. */
LyqPresetColortableHandler* makeWithout(long long allocation, bool& hasFailed) {
    LyqPresetColortableHandler* made = nullptr;
    const ScarceMemory scarce(allocation);
    try {
        made = new LyqPresetColortableHandler(Lyr::ColorLookupTable, LyrString("tables"));
    } catch (const std::bad_alloc&) {
        made = nullptr;
    }
    hasFailed = scarce.hasFailed();
    return made;
}

}  // namespace

using PresetMemory = PresetTest;

TEST_F(PresetMemory, a_handler_without_memory_for_its_parts_says_so_and_works) {
    int reported = 0;
    bool hasFailed = true;
    for (int n = 0; n < ALLOCATIONS && hasFailed; ++n) {
        LyqPresetColortableHandler* const made = makeWithout(n, hasFailed);
        const LyrObjectPtr handle(made);
        const auto told = errors.take();
        if (!made || told.empty()) {
            continue;
        }
        EXPECT_EQ(told, (std::vector<Errors::Entry>{{made, ALLOCATION_FAILED}}));
        EXPECT_EQ(made->getProtectedFlags() & 0x110100u, 0x110100u);
        made->setPresetFolder(Lyr::UserPreset, folder.path());
        made->setApplicationObject(table.get());
        EXPECT_TRUE(made->savePresetAs("mine")) << made->getMessage().utf8();
        EXPECT_TRUE(made->applyPreset("mine", Lyr::UserPreset)) << made->getMessage().utf8();
        ++reported;
    }
    EXPECT_FALSE(hasFailed) << "one that needed no more memory than there was";
    EXPECT_EQ(reported, 2) << "the list of its base's properties, and its private part";
}

TEST_F(PresetMemory, a_handler_made_by_name_without_memory_is_none_or_there_and_nothing_is_thrown) {
    bool hasFailed = true;
    int failures = 0;
    for (int n = 0; n < ALLOCATIONS && hasFailed; ++n) {
        LyrClass* made = nullptr;
        {
            const ScarceMemory scarce(n);
            EXPECT_NO_THROW(made = LyrMetaClass::create("LyqPresetColortableHandler"));
            hasFailed = scarce.hasFailed();
        }
        failures += hasFailed ? 1 : 0;
        const LyrObjectPtr handle(static_cast<LyrObject*>(made));
        const auto told = errors.take();
        EXPECT_TRUE(made || (told.size() == 1 && told[0].code == ALLOCATION_FAILED)) << n;
    }
    EXPECT_FALSE(hasFailed);
    EXPECT_GT(failures, 5);
}

TEST_F(PresetMemory, a_preset_that_could_not_be_undone_is_not_applied_and_says_so) {
    struct Full : LyrUndoJournal::Sink {
        Full() { LyrUndoJournal::instance().setSink(this); }
        ~Full() override { LyrUndoJournal::instance().setSink(before); }
        bool stepFinished(std::unique_ptr<LyrUndoStep>&) override { throw std::bad_alloc(); }
        LyrUndoJournal::Sink* before = LyrUndoJournal::instance().getSink();
    };
    ASSERT_TRUE(handler->savePresetAs("plain"));
    makeUnusual(*table.get());
    const std::string unusual = textOf(*table);
    {
        const Full full;
        EXPECT_FALSE(handler->applyPreset("plain", Lyr::UserPreset));
    }
    EXPECT_FALSE(handler->getMessage().isEmpty());
    EXPECT_EQ(errors.take(), (std::vector<Errors::Entry>{{nullptr, ALLOCATION_FAILED}}));
    EXPECT_EQ(textOf(*table), unusual);
    EXPECT_TRUE(handler->applyPreset("plain", Lyr::UserPreset)) << handler->getMessage().utf8();
    EXPECT_NE(textOf(*table), unusual);
}

TEST_F(PresetMemory, a_proxy_that_cannot_register_its_properties_says_so) {
    constexpr int failed = static_cast<int>(0xF3CB0001u);
    int reported = 0;
    bool hasFailed = true;
    for (int n = 0; n < 1000 && hasFailed; ++n) {
        LyrClass* made = nullptr;
        {
            const ScarceMemory scarce(n);
            EXPECT_NO_THROW(made = LyrMetaClass::create("LyrPresetColortableProxyObject"));
            hasFailed = scarce.hasFailed();
        }
        const LyrObjectPtr handle(static_cast<LyrObject*>(made));
        const auto told = errors.take();
        EXPECT_TRUE(!told.empty() || (handle && handle->getPropertyCount() == 3)) << "silently, " << n;
        if (handle && std::count(told.begin(), told.end(), Errors::Entry{made, failed}) > 0) {
            EXPECT_LT(handle->getPropertyCount(), 3) << n;
            ++reported;
        }
    }
    EXPECT_FALSE(hasFailed);
    EXPECT_GE(reported, 1);
}
