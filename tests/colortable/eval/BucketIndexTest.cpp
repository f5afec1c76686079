#include <colortable/model/eval/BucketIndex_p.h>

#include <gtest/gtest.h>

#include <algorithm>

#include <colortable/model/eval/ColorPlan.h>
#include <colortable/model/eval/KernelTarget_p.h>

#include "GuardedArray.h"
#include "TestTables.h"

using namespace lys::eval;

namespace {

const float inf = std::numeric_limits<float>::infinity();

/// A table whose sections are constants: the red of each is its number.
plain::Table numberedTable(const std::vector<float>& positions) {
    plain::Table t;
    t.positions = positions;
    for (size_t k = 0; k <= positions.size(); ++k)
        t.sections.push_back(plain::constantSection(float(k), 0.0f, 0.0f));
    return t;
}

std::vector<int> sectionsBy(KernelTarget target, const std::vector<float>& positions,
                            const std::vector<float>& values) {
    const plain::Table table = numberedTable(positions);
    ColorPlan plan;
    EXPECT_TRUE(plan.buildFor(target, table.view()));
    EXPECT_TRUE(plan.isFlat());
    std::vector<float> colors(values.size() * 4, -1.0f);
    EXPECT_EQ(plan.colorize(int64_t(values.size()), values.data(), colors.data()), -1);
    std::vector<int> sections;
    for (size_t i = 0; i < values.size(); ++i)
        sections.push_back(int(colors[4 * i]));
    return sections;
}

void expectSections(const std::vector<float>& positions, const std::vector<float>& values,
                    const std::vector<int>& want) {
    for (const KernelTarget target : allKernelTargets) {
        if (isKernelTargetAvailable(target)) {
            EXPECT_EQ(sectionsBy(target, positions, values), want) << kernelTargetName(target);
        }
    }
}

/// For values that are not the first boundary.
std::vector<int> boundariesBelow(const std::vector<float>& positions, const std::vector<float>& values) {
    std::vector<int> sections;
    for (const float value : values)
        sections.push_back(int(std::count_if(positions.begin(), positions.end(), [&](float p) { return p < value; })));
    return sections;
}

}  // namespace

TEST(BucketIndex, two_or_three_negative_boundaries_part_all_values) {
    expectSections({-2.0f, -1.0f}, {-100.0f, -2.5f, -1.5f, -0.5f, 100.0f}, {0, 0, 1, 2, 2});
    expectSections({-3.0f, -2.0f, -1.0f}, {-100.0f, -3.5f, -2.5f, -1.5f, -0.5f, 100.0f}, {0, 0, 1, 2, 3, 3});
}

// Too many to be searched in registers, and so crowded on a logarithmic scale that buckets of equal width are taken.
TEST(BucketIndex, negative_boundaries_in_crowds_part_all_values) {
    std::vector<float> positions;
    for (const float size : {1e30f, 1e20f, 1e10f, 1.0f, 1e-10f}) {
        for (int k = 8; k > 0; --k)
            positions.push_back(-size * (1.0f + float(k) / 64.0f));
    }
    std::vector<float> values = {-inf, -FLT_MAX, -2e30f, 0.0f, 1.0f, inf};
    for (size_t k = 1; k < positions.size(); ++k)
        values.push_back(std::nextafter(positions[k], inf));
    expectSections(positions, values, boundariesBelow(positions, values));
}

// 3 boundaries: 16 buckets of width 1, the second of which begins at the second boundary.
TEST(BucketIndex, a_boundary_at_the_edge_of_a_bucket_is_below_what_is_greater_only) {
    expectSections({0.0f, 1.0f, 16.0f}, {-1.0f, 0.5f, 1.0f, 1.5f, 2.0f, 15.5f, 16.0f, 17.0f}, {0, 1, 1, 2, 2, 2, 2, 3});
}

// One step of the search is enough for all buckets but the first, which holds three boundaries.
TEST(BucketIndex, a_crowded_first_bucket_is_searched_to_its_end) {
    for (const int alone : {16, 64}) {
        std::vector<float> positions = {0.0f, 0.1f, 0.2f};
        for (int k = 1; k <= alone; ++k)
            positions.push_back(float(4 * k));
        const std::vector<float> values = {-1.0f, 0.05f, 0.1f, 0.15f, 0.2f, 0.3f, 3.9f, 4.0f, 4.1f, 1000.0f};
        expectSections(positions, values, boundariesBelow(positions, values));
    }
}

TEST(BucketIndex, the_search_is_padded_for_all_steps_and_has_four_buckets_or_more_for_each_boundary) {
    // Bisections of bit_width(n) steps: 2^bit_width(n) keys beyond the last one.
    EXPECT_EQ(paddedKeyCount(2), 2 + 4);
    EXPECT_EQ(paddedKeyCount(63), 63 + 64);
    EXPECT_EQ(paddedKeyCount(64), 64 + 128);
    EXPECT_EQ(bucketCountFor(2), 8);
    EXPECT_EQ(bucketCountFor(63), 256);
    EXPECT_EQ(bucketCountFor(65), 512);
    EXPECT_EQ(bucketCountFor(16384), 65536);
    EXPECT_EQ(bucketCountFor(65535), 65536);
    EXPECT_EQ(bucketCountFor(65536), 1);  // more than 16 bits can number
}

TEST(BucketIndex, an_index_is_written_into_its_own_keys_and_starts_alone) {
    for (const int count : {2, 3, 10, 63, 64, 80, 1000, 70000}) {
        std::vector<float> even;
        std::vector<float> crowded;
        for (int k = 0; k < count; ++k) {
            even.push_back(float(k));
            crowded.push_back(std::ldexp(1.0f, k % 200) * (k < 200 ? 1.0f : 1.5f));
        }
        std::sort(crowded.begin(), crowded.end());
        for (const std::vector<float>& positions : {even, crowded}) {
            const auto keyCount = size_t(paddedKeyCount(count));
            const auto startCount = size_t(bucketCountFor(count)) + 1;
            std::vector<int32_t> keys(keyCount + 2, -77);
            std::vector<uint16_t> starts(startCount + 2, 777);
            BucketIndex index;
            buildBucketIndex(positions.data(), count, &keys[1], &starts[1], &index);
            EXPECT_EQ(keys.front(), -77) << count;
            EXPECT_EQ(keys.back(), -77) << count;
            EXPECT_EQ(keys[keyCount], INT32_MAX) << count;
            EXPECT_EQ(starts.front(), 777) << count;
            EXPECT_EQ(starts.back(), 777) << count;
            EXPECT_EQ(starts[1], 0) << count;
        }
    }
}

TEST(BucketIndex, a_plan_of_up_to_63_boundaries_stays_inside_its_own_memory) {
    struct Fenced {
        ColorPlan plan;
        unsigned char fence[2048];
    };
    for (const KernelTarget target : allKernelTargets) {
        if (!isKernelTargetAvailable(target))
            continue;
        for (int count = 2; count <= 63; ++count) {
            std::vector<float> positions;
            for (int k = 0; k < count; ++k)
                positions.push_back(float(k));
            const plain::Table table = numberedTable(positions);
            Fenced fenced;
            std::fill(std::begin(fenced.fence), std::end(fenced.fence), 0xA5);
            ASSERT_TRUE(fenced.plan.buildFor(target, table.view()));
            EXPECT_EQ(std::count(std::begin(fenced.fence), std::end(fenced.fence), 0xA5), 2048) << count;
        }
    }
}

TEST(BucketIndex, no_boundary_around_the_list_is_read) {
    for (const std::vector<float>& list : std::vector<std::vector<float>>{{inf, inf},
                                                                          {-inf, -inf},
                                                                          {-inf, inf},
                                                                          {-inf, 0.0f, inf},
                                                                          {0.0f, inf},
                                                                          {-2.0f, -1.0f},
                                                                          {0.0f, 1.0f, 1.0f, 4.0f}}) {
        plain::Table table = numberedTable(list);
        for (const bool atEnd : {false, true}) {
            const GuardedArray positions(list.size(), atEnd);
            std::copy(list.begin(), list.end(), positions.data());
            for (const KernelTarget target : allKernelTargets) {
                if (!isKernelTargetAvailable(target))
                    continue;
                ColorPlan plan;
                TableView view = table.view();
                view.positions = positions.data();
                ASSERT_TRUE(plan.buildFor(target, view));
                const float value = 0.5f;
                float color[4] = {};
                EXPECT_EQ(plan.colorize(1, &value, color), -1);
                EXPECT_EQ(int(color[0]), boundariesBelow(list, {value})[0]);
            }
        }
    }
}
