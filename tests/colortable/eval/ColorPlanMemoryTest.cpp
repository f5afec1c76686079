#include <colortable/model/eval/ColorPlan.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "TestTables.h"

using namespace lys::eval;

namespace {

thread_local bool refusing = false;
thread_local int asked = 0;
thread_local int brokenFences = 0;
constexpr int fenceBytes = 16;

}  // namespace

// Memory of plans, in place of the library's: none at all when it is to be refused, else full of other data. The size
// stands before it, a fence behind it.
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    ++asked;
    const auto line = static_cast<std::size_t>(alignment);
    const std::size_t whole = line + (size + fenceBytes + line - 1) / line * line;
    auto* memory = refusing ? nullptr : static_cast<unsigned char*>(std::aligned_alloc(line, whole));
    if (!memory)
        return nullptr;
    std::memset(memory, 0x5A, whole);
    std::memcpy(memory + line - sizeof size, &size, sizeof size);
    return memory + line;
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    void* memory = operator new(size, alignment, std::nothrow);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory, std::align_val_t alignment) noexcept {
    if (!memory)
        return;
    const auto* data = static_cast<const unsigned char*>(memory);
    std::size_t size = 0;
    std::memcpy(&size, data - sizeof size, sizeof size);
    brokenFences += std::count(data + size, data + size + fenceBytes, 0x5A) != fenceBytes;
    std::free(static_cast<unsigned char*>(memory) - static_cast<std::size_t>(alignment));
}

void operator delete(void* memory, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    operator delete(memory, alignment);
}

namespace {

plain::Table evenTable(size_t boundaries) {
    plain::Table t;
    for (size_t k = 0; k <= boundaries; ++k) {
        if (k < boundaries)
            t.positions.push_back(float(k));
        t.sections.push_back(plain::constantSection(float(k % 1000), 0.0f, 0.0f));
    }
    return t;
}

}  // namespace

TEST(ColorPlanMemory, without_memory_a_long_table_has_no_plan_and_a_short_one_needs_none) {
    const plain::Table shortOne = evenTable(63);
    const plain::Table longOne = evenTable(64);
    ColorPlan plan;
    refusing = true;
    const bool shortBuilt = plan.build(shortOne.view());
    const bool shortFlat = plan.isFlat();
    const bool longBuilt = plan.build(longOne.view());
    refusing = false;
    EXPECT_TRUE(shortBuilt);
    EXPECT_TRUE(shortFlat);
    EXPECT_FALSE(longBuilt);
    EXPECT_FALSE(plan.isFlat());
    // What has no plan is coloured by the scalar path; with memory there is one again.
    const float value = 10.5f;
    float color[4] = {};
    EXPECT_EQ(plan.colorize(1, &value, color), -1);
    EXPECT_EQ(color[0], 11.0f);
    EXPECT_TRUE(plan.build(longOne.view()));
    EXPECT_TRUE(plan.isFlat());
}

TEST(ColorPlanMemory, what_the_memory_held_before_is_nothing_to_the_plan_and_what_lies_behind_it_stays) {
    for (const size_t boundaries : {size_t{64}, size_t{65}, size_t{80}, size_t{300}, size_t{1023}, size_t{66000}}) {
        const plain::Table table = evenTable(boundaries);
        brokenFences = 0;
        {
            ColorPlan plan;
            ASSERT_TRUE(plan.build(table.view()));
        }
        EXPECT_EQ(brokenFences, 0) << boundaries;
        ColorPlan plan;
        asked = 0;
        ASSERT_TRUE(plan.build(table.view()));
        EXPECT_EQ(asked, 1);
        for (size_t at = 0; at <= boundaries; at += 63) {
            const float value = float(at) - 0.5f;
            float color[4] = {};
            ASSERT_EQ(plan.colorize(1, &value, color), -1);
            EXPECT_EQ(color[0], float(at % 1000)) << at << " of " << boundaries;
        }
    }
}
