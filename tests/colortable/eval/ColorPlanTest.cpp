#include <colortable/model/eval/ColorPlan.h>

#include <gtest/gtest.h>

#include <thread>

#include <colortable/model/eval/KernelTarget_p.h>

#include "GuardedArray.h"
#include "TestTables.h"

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

using namespace lys::eval;

namespace {

const float inf = std::numeric_limits<float>::infinity();
constexpr float guard = 12345.0f;

std::vector<KernelTarget> targets() {
    std::vector<KernelTarget> found;
    for (const KernelTarget target : allKernelTargets) {
        if (isKernelTargetAvailable(target))
            found.push_back(target);
    }
    return found;
}

/// Colours with a plan between guards, `shift` floats away from a line's start.
struct Coloring {
    std::vector<float> memory;
    float* out;
    int64_t failing;

    Coloring(const ColorPlan& plan, const float* values, int64_t count, size_t shift = 0)
        : memory(size_t(count) * 4 + 96, guard) {
        out = memory.data() + 32;
        while (reinterpret_cast<uintptr_t>(out) % 64 != 0)
            ++out;
        out += shift;
        failing = plan.colorize(count, values, out);
    }
};

/// The scalar path's colours in the same kind of memory; the failing entry stays as it was, as a plan leaves it.
struct Expected {
    std::vector<float> colors;
    int64_t failing = -1;

    Expected(const plain::Table& table, const std::vector<float>& values) : colors(values.size() * 4, guard) {
        Failure failure;
        if (!scalarColors(table.view(), int64_t(values.size()), values.data(), colors.data(), &failure)) {
            failing = failure.entry;
            std::fill_n(colors.data() + 4 * failing, 4, guard);
        }
    }
};

::testing::AssertionResult colorsAs(const Expected& want, const plain::Table& table, const std::vector<float>& values,
                                    KernelTarget target, size_t shift = 0) {
    ColorPlan plan;
    if (!plan.buildFor(target, table.view()))
        return ::testing::AssertionFailure() << "no plan";
    const Coloring run(plan, values.data(), int64_t(values.size()), shift);
    const char* name = kernelTargetName(target);
    if (run.failing != want.failing)
        return ::testing::AssertionFailure()
               << name << ": failing entry " << run.failing << " instead of " << want.failing;
    if (run.out[-1] != guard || run.out[want.colors.size()] != guard)
        return ::testing::AssertionFailure() << name << ": wrote outside";
    if (std::memcmp(run.out, want.colors.data(), want.colors.size() * sizeof(float)) == 0)
        return ::testing::AssertionSuccess();
    size_t at = 0;
    while (plain::bitsOf(run.out[at]) == plain::bitsOf(want.colors[at]))
        ++at;
    return ::testing::AssertionFailure() << name << ": value " << values[at / 4] << " (entry " << at / 4 << " of "
                                         << values.size() << "), channel " << at % 4 << ": " << run.out[at] << " ("
                                         << std::hex << plain::bitsOf(run.out[at]) << ") instead of " << want.colors[at]
                                         << " (" << plain::bitsOf(want.colors[at]) << ')';
}

::testing::AssertionResult equalToScalar(const plain::Table& table, const std::vector<float>& values,
                                         KernelTarget target, size_t shift = 0) {
    return colorsAs(Expected(table, values), table, values, target, shift);
}

/// Sections of one type each between constant ends.
plain::Table wholeOf(Rule rule) {
    plain::Table t = plain::rainbowTable();
    t.positions = {0.0f, 1.0f};
    t.sections[1] = plain::analyticSection(rule);
    const float first[4] = {0.1f, 0.9f, -0.5f, 1.0f};
    const float last[4] = {0.1f, 0.2f, 3.0f, 0.25f};
    for (int c = 0; c < 4 && rule == Rule::Gradient; ++c) {
        t.sections[1].has[c] = true;
        t.sections[1].first[c] = first[c];
        t.sections[1].last[c] = last[c];
    }
    return t;
}

std::vector<float> denseUnitSample() {
    std::vector<float> values;
    for (uint32_t bits = 0; bits <= 0x3F800000u; bits += 2029)
        values.push_back(plain::floatOf(bits));
    for (const float edge : {0.0f, 0.16666667f, 0.33333334f, 0.5f, 0.6666667f, 0.8333333f, 1.0f}) {
        for (int step = -40; step <= 40; ++step)
            values.push_back(plain::floatOf(uint32_t(std::max(0, int(plain::bitsOf(edge)) + step))));
    }
    return values;
}

}  // namespace

TEST(ColorPlan, every_rule_alone_or_twice_equals_the_scalar_path) {
    std::vector<float> values = {-inf, -1.0f, inf, std::nanf("")};
    for (int i = -8; i <= 136; ++i)
        values.push_back(float(i) / 64.0f);
    for (const Rule rule : {Rule::Constant, Rule::Gradient, Rule::Rainbow, Rule::InvertedRainbow, Rule::Continue,
                            Rule::BlackGreenBlueRed, Rule::HueCycle}) {
        plain::Table alone = wholeOf(rule);
        plain::Table twice = alone;
        twice.positions.push_back(2.0f);
        twice.sections.insert(twice.sections.begin() + 1, twice.sections[1]);
        plain::Table mixed = twice;
        mixed.sections[2] = plain::analyticSection(Rule::Rainbow);
        for (const KernelTarget target : targets()) {
            EXPECT_TRUE(equalToScalar(alone, values, target)) << int(rule);
            EXPECT_TRUE(equalToScalar(twice, values, target)) << int(rule);
            EXPECT_TRUE(equalToScalar(mixed, values, target)) << int(rule);
        }
    }
}

TEST(ColorPlan, every_rule_equals_the_scalar_path_on_a_dense_sample) {
    const std::vector<float> values = denseUnitSample();
    for (const KernelTarget target : targets()) {
        for (const Rule rule : {Rule::Constant, Rule::Gradient, Rule::Rainbow, Rule::InvertedRainbow, Rule::Continue,
                                Rule::BlackGreenBlueRed, Rule::HueCycle})
            EXPECT_TRUE(equalToScalar(wholeOf(rule), values, target)) << int(rule);
    }
}

TEST(ColorPlan, random_tables_that_cannot_fail_equal_the_scalar_path) {
    plain::Random random(17);
    for (int round = 0; round < 300; ++round) {
        random.withNan = round % 4 == 0;
        const plain::Table t = random.table(2 + random.below(40), false);
        const std::vector<float> values = plain::interestingValues(t, &random, 1 + random.below(1500));
        for (const KernelTarget target : targets())
            ASSERT_TRUE(equalToScalar(t, values, target, random.below(16))) << round;
    }
}

TEST(ColorPlan, random_tables_that_may_fail_equal_the_scalar_path_in_every_effect) {
    plain::Random random(19);
    for (int round = 0; round < 600; ++round) {
        random.withNan = round % 4 == 0;
        const plain::Table t = random.table(2 + random.below(70), true);
        std::vector<float> values = plain::interestingValues(t, &random, 1 + random.below(900));
        for (const KernelTarget target : targets()) {
            while (true) {
                ASSERT_TRUE(equalToScalar(t, values, target, random.below(16))) << round;
                const int64_t failing = Expected(t, values).failing;
                if (failing < 0)
                    break;
                values.erase(values.begin() + failing);
                if (values.empty() || random.oneIn(10))
                    break;
            }
            if (values.empty())
                break;
        }
    }
}

TEST(ColorPlan, tables_of_one_kind_equal_the_scalar_path_at_every_size) {
    plain::Random random(23);
    random.withNan = false;
    for (const Rule rule : {Rule::Constant, Rule::Gradient, Rule::Rainbow, Rule::HueCycle, Rule::BlackGreenBlueRed}) {
        for (const size_t boundaries : {2, 3, 4, 7, 8, 15, 16, 17, 31, 32, 33, 63, 64, 65, 300}) {
            plain::Table t = random.table(boundaries, false);
            for (SectionData& section : t.sections)
                section.rule = random.oneIn(5) ? Rule::Constant : rule;
            const std::vector<float> values = plain::interestingValues(t, &random, 700);
            for (const KernelTarget target : targets())
                ASSERT_TRUE(equalToScalar(t, values, target)) << int(rule) << ' ' << boundaries;
        }
    }
}

TEST(ColorPlan, thousands_of_boundaries_equal_the_scalar_path) {
    plain::Random random(29);
    random.withNan = false;
    for (int round = 0; round < 24; ++round) {
        const plain::Table t = random.table(round % 2 ? 3000 : 1000 + random.below(2000), false);
        const std::vector<float> values = plain::interestingValues(t, &random, 3000);
        for (const KernelTarget target : targets())
            ASSERT_TRUE(equalToScalar(t, values, target)) << round;
    }
}

TEST(ColorPlan, more_boundaries_than_buckets_can_number_equal_the_scalar_path) {
    plain::Random random(31);
    random.withNan = false;
    plain::Table t = plain::rainbowTable();
    t.positions.resize(70000);
    for (size_t i = 0; i < t.positions.size(); ++i)
        t.positions[i] = float(i);
    for (size_t i = t.sections.size(); i <= t.positions.size(); ++i)
        t.sections.push_back(random.section(false));
    const std::vector<float> values = plain::interestingValues(t, &random, 1000);
    for (const KernelTarget target : targets())
        ASSERT_TRUE(equalToScalar(t, values, target));
}

TEST(ColorPlan, only_descending_boundaries_and_blended_nan_have_no_flat_form) {
    ColorPlan plan;
    plain::Table t = wholeOf(Rule::Gradient);
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_TRUE(plan.isFlat());
    t.sections[1].first[0] = inf;
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_TRUE(plan.isFlat());
    t.sections[1].first[0] = std::nanf("");
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_FALSE(plan.isFlat());
    t.sections[1].rule = Rule::Constant;
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_TRUE(plan.isFlat());
    t.positions = {1, 0};
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_FALSE(plan.isFlat());
}

TEST(ColorPlan, every_count_and_every_alignment_equals_the_scalar_path) {
    plain::Random random(37);
    plain::Table t = plain::rainbowTable();
    t.sections[0] = plain::analyticSection(Rule::HueCycle);
    for (const KernelTarget target : targets()) {
        for (size_t count = 1; count <= 600; count += count < 70 ? 1 : 37) {
            std::vector<float> values(count);
            for (float& v : values)
                v = random.in(-3, 3);
            for (size_t shift = 0; shift < 16; shift += count < 70 ? 1 : 3)
                ASSERT_TRUE(equalToScalar(t, values, target, shift)) << count << ' ' << shift;
        }
    }
}

TEST(ColorPlan, outputs_larger_than_the_caches_equal_the_scalar_path_at_every_alignment) {
    plain::Random random(41);
    const plain::Table t = plain::rainbowTable();
    plain::Table failing = t;
    failing.sections[2].rule = Rule::None;
    std::vector<float> values((1 << 20) + 10013);  // 16 MiB of colours and some
    for (float& v : values)
        v = random.in(-2, 2);
    std::vector<float> mostlyGood = values;
    for (float& v : mostlyGood)
        v = std::min(v, 1.0f);
    mostlyGood[777] = 2.0f;
    const Expected want(t, values);
    const Expected wantFailing(failing, mostlyGood);
    EXPECT_EQ(wantFailing.failing, 777);
    for (const KernelTarget target : targets()) {
        for (const size_t shift : {0, 1, 4, 8, 12}) {
            EXPECT_TRUE(colorsAs(want, t, values, target, shift)) << shift;
            EXPECT_TRUE(colorsAs(wantFailing, failing, mostlyGood, target, shift)) << shift;
        }
    }
}

// Streamed colours have to lie on the lines of memory, wherever in a page the output begins.
TEST(ColorPlan, a_large_output_may_begin_anywhere_in_a_page) {
    const plain::Table t = plain::rainbowTable();
    constexpr size_t count = (1 << 20) + 64;
    const std::vector<float> values(count, 0.5f);
    float want[4];
    ASSERT_TRUE(scalarColor(t.view(), 0.5f, want));
    for (const size_t behind : {4u, 8u}) {
        const GuardedArray memory(count * 4 + 1024, false);
        float* out = memory.data() + behind;
        for (const KernelTarget target : targets()) {
            ColorPlan plan;
            ASSERT_TRUE(plan.buildFor(target, t.view()));
            ASSERT_EQ(plan.colorize(int64_t(count), values.data(), out), -1);
            for (const size_t i : {size_t{0}, size_t{1}, size_t{2}, size_t{3}, size_t{4}, count / 2, count - 1})
                EXPECT_EQ(std::memcmp(out + 4 * i, want, sizeof want), 0) << i << " behind " << behind;
        }
    }
}

TEST(ColorPlan, a_constant_keeps_the_bits_of_any_nan_beside_rules) {
    for (const Rule rule : {Rule::Rainbow, Rule::HueCycle, Rule::BlackGreenBlueRed}) {
        plain::Table t = wholeOf(rule);
        t.sections[0] = plain::constantSection(plain::floatOf(0x7FA00001u), plain::floatOf(0xFFC00002u), 0.25f);
        for (const KernelTarget target : targets())
            EXPECT_TRUE(equalToScalar(t, {-1.0f, 0.5f, 2.0f, -3.0f}, target)) << int(rule);
    }
}

TEST(ColorPlan, no_page_around_the_arrays_is_touched) {
    const plain::Table t = plain::rainbowTable();
    for (const KernelTarget target : targets()) {
        ColorPlan plan;
        ASSERT_TRUE(plan.buildFor(target, t.view()));
        for (size_t count = 1; count < 300; ++count) {
            for (const bool atEnd : {false, true}) {
                const GuardedArray values(count, atEnd);
                const GuardedArray out(count * 4, atEnd);
                std::fill_n(values.data(), count, 0.5f);
                EXPECT_EQ(plan.colorize(int64_t(count), values.data(), out.data()), -1);
                EXPECT_EQ(out.data()[count * 4 - 1], 1.0f);
            }
        }
    }
}

TEST(ColorPlan, any_number_of_failing_sections_apart_from_each_other_fails_as_the_scalar_path_does) {
    plain::Random random(67);
    for (size_t failing = 1; failing <= 12; ++failing) {
        plain::Table t;
        for (size_t k = 0; k < 2 * failing + 2; ++k)
            t.positions.push_back(float(k));
        for (size_t k = 0; k <= t.positions.size(); ++k)
            t.sections.push_back(plain::analyticSection(k % 2 == 1 && k < 2 * failing ? Rule::None : Rule::HueCycle));
        for (int round = 0; round < 20; ++round) {
            std::vector<float> values(400);
            for (float& v : values)
                v = float(2 * random.below(uint32_t(failing) + 2)) - random.in(0.05f, 0.95f);
            values[random.below(400)] = float(2 * random.below(uint32_t(failing))) + 0.5f;
            for (const KernelTarget target : targets())
                ASSERT_TRUE(equalToScalar(t, values, target)) << failing;
        }
    }
}

TEST(ColorPlan, a_failing_value_is_found_wherever_it_stands) {
    for (const Rule end : {Rule::None, Rule::Constant}) {
        plain::Table t = plain::rainbowTable();
        t.sections[end == Rule::None ? 0 : 2].rule = Rule::None;
        t.sections[end == Rule::None ? 2 : 0].rule = Rule::Constant;
        const float failing = end == Rule::None ? -3.0f : 3.0f;
        for (const KernelTarget target : targets()) {
            for (const size_t count : {1, 2, 5, 16, 31, 33, 70, 130}) {
                std::vector<float> values(count, 0.25f);
                EXPECT_TRUE(equalToScalar(t, values, target)) << count;
                // On the boundaries' own side, and below 0.
                for (const float good : {1.0f, std::nextafter(-1.0f, 0.0f), -0.5f})
                    EXPECT_TRUE(equalToScalar(t, std::vector<float>(count, good), target)) << good;
                for (size_t at = 0; at < count; ++at) {
                    values[at] = failing;
                    EXPECT_TRUE(equalToScalar(t, values, target)) << at << " of " << count;
                    values[at] = 0.25f;
                }
            }
        }
    }
}

TEST(ColorPlan, pieces_of_many_values_are_checked_one_by_one) {
    plain::Table t = plain::rainbowTable();
    t.sections[2].rule = Rule::None;
    for (const KernelTarget target : targets()) {
        for (const size_t count : {8191, 8192, 8193, 16384, 20000}) {
            std::vector<float> values(count, 0.25f);
            EXPECT_TRUE(equalToScalar(t, values, target)) << count;
            for (const size_t at : {size_t{0}, size_t{100}, size_t{8190}, count - 1}) {
                values[at] = 3.0f;
                EXPECT_TRUE(equalToScalar(t, values, target)) << at << " of " << count;
                values[at] = 0.25f;
            }
        }
    }
}

TEST(ColorPlan, failing_sections_that_touch_count_as_one_and_eight_apart_have_a_flat_form) {
    const auto isFlat = [](int apart, bool together) {
        plain::Table t;
        for (int k = 0; k < 2 * apart + 2; ++k)
            t.positions.push_back(float(k));
        for (int k = 0; k <= 2 * apart + 2; ++k)
            t.sections.push_back(plain::analyticSection(
                k > 0 && k < 2 * apart && (together || k % 2 == 1) ? Rule::None : Rule::HueCycle));
        ColorPlan plan;
        EXPECT_TRUE(plan.build(t.view()));
        return plan.isFlat();
    };
    EXPECT_TRUE(isFlat(1, false));
    EXPECT_TRUE(isFlat(8, false));
    EXPECT_FALSE(isFlat(9, false));
    EXPECT_TRUE(isFlat(20, true));
    // Ten sections, the first three of which touch: eight runs.
    plain::Table t;
    for (int k = 0; k < 20; ++k)
        t.positions.push_back(float(k));
    for (int k = 0; k <= 20; ++k)
        t.sections.push_back(plain::analyticSection(k % 2 == 1 && k < 18 ? Rule::None : Rule::HueCycle));
    t.sections[2].rule = Rule::None;
    ColorPlan plan;
    EXPECT_TRUE(plan.build(t.view()));
    EXPECT_TRUE(plan.isFlat());
}

TEST(ColorPlan, what_is_below_all_boundaries_or_between_twins_takes_no_place_among_the_eight) {
    plain::Table t;
    for (int k = 0; k < 9; ++k) {
        t.positions.push_back(float(k));
        t.positions.push_back(float(k));
    }
    for (size_t k = 0; k <= t.positions.size(); ++k)
        t.sections.push_back(plain::analyticSection(Rule::HueCycle));  // between twins no rule has a colour
    ColorPlan plan;
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_TRUE(plan.isFlat());
    t.sections[0].rule = Rule::None;
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_TRUE(plan.isFlat());
    for (const KernelTarget target : targets()) {
        EXPECT_TRUE(equalToScalar(t, {1.0f, 0.5f, 7.0f, 9.0f, 8.5f}, target));
        EXPECT_TRUE(equalToScalar(t, {1.0f, -0.5f, 7.0f}, target));
        EXPECT_TRUE(equalToScalar(t, {1.0f, std::nextafter(0.0f, -inf), 7.0f}, target));
    }
}

TEST(ColorPlan, a_plan_of_a_list_is_that_of_its_table) {
    plain::Table t = plain::rainbowTable();
    const float values[3] = {-2.0f, 0.5f, 2.0f};
    for (const bool below : {false, true}) {
        for (const bool above : {false, true}) {
            t.below = below;
            t.above = above;
            ColorPlan plan;
            ASSERT_TRUE(plan.build(t.positions.data(), 2, t.sections.data(), below, above));
            const Coloring run(plan, values, 3);
            const Expected want(t, {-2.0f, 0.5f, 2.0f});
            EXPECT_EQ(std::memcmp(run.out, want.colors.data(), sizeof(float) * 12), 0) << below << above;
        }
    }
}

TEST(ColorPlan, boundaries_that_are_not_finite_equal_the_scalar_path) {
    plain::Random random(43);
    const std::vector<std::vector<float>> lists = {
        {-inf, 0, inf},       {-inf, -inf, inf, inf}, {inf, inf},
        {-inf, -inf},         {-FLT_MAX, FLT_MAX},    {-FLT_MAX, -FLT_MAX, 0},
        {0.0f, -0.0f, 0, 1},  {-0.0f, 0.0f},          {FLT_TRUE_MIN, 2 * FLT_TRUE_MIN},
        {0.0f, FLT_TRUE_MIN}, {FLT_MAX, FLT_MAX},     {3, 3, 3, 4, 4, inf}};
    for (const std::vector<float>& list : lists) {
        for (int round = 0; round < 30; ++round) {
            plain::Table t = random.table(list.size(), round % 2 == 0);
            t.positions = list;
            const std::vector<float> values = plain::interestingValues(t, &random, 20);
            for (const float v : values) {
                for (const KernelTarget target : targets())
                    ASSERT_TRUE(equalToScalar(t, {v}, target));
            }
        }
    }
}

TEST(ColorPlan, lists_that_do_not_ascend_are_searched_as_the_scalar_path_does) {
    plain::Random random(47);
    for (int round = 0; round < 50; ++round) {
        plain::Table t = random.table(2 + random.below(40), round % 2 == 0);
        std::shuffle(t.positions.begin(), t.positions.end(), random.engine);
        if (round % 3 == 0)
            t.positions[random.below(uint32_t(t.positions.size()))] = std::nanf("");
        std::vector<float> values(300);
        for (float& v : values)
            v = random.oneIn(3) ? random.anyNumber() : random.in(-2, 2);
        for (const KernelTarget target : targets())
            ASSERT_TRUE(equalToScalar(t, values, target));
    }
}

TEST(ColorPlan, a_bad_link_fails_even_behind_a_finite_end_and_a_missing_rule_does_not) {
    plain::Table t = plain::rainbowTable();
    t.below = t.above = true;
    t.sections[0].isSection = false;
    t.sections[2].rule = Rule::None;
    const std::vector<float> values = {0, 0.5f, -3, 3, 0.25f, 7};
    for (const KernelTarget target : targets()) {
        ColorPlan plan;
        ASSERT_TRUE(plan.buildFor(target, t.view()));
        const Coloring run(plan, values.data(), 6);
        EXPECT_EQ(run.failing, 2);
        EXPECT_EQ(run.out[4 * 2], guard);
        EXPECT_EQ(run.out[4 * 1], guard);
        EXPECT_EQ(run.out[4 * 3], 0.0f);
        EXPECT_EQ(run.out[4 * 3 + 3], 1.0f);
    }
}

TEST(ColorPlan, nothing_is_read_or_written_for_no_values) {
    ColorPlan plan;
    const plain::Table t = plain::rainbowTable();
    ASSERT_TRUE(plan.build(t.view()));
    EXPECT_EQ(plan.colorize(0, nullptr, nullptr), -1);
    EXPECT_EQ(plan.colorize(-5, nullptr, nullptr), -1);
}

TEST(ColorPlan, values_inside_the_output_are_read_in_the_scalar_order) {
    const plain::Table t = plain::rainbowTable();
    plain::Random random(53);
    for (const size_t offset : {0, 100, 2999}) {
        std::vector<float> a(4000);
        for (float& v : a)
            v = random.in(-2, 2);
        std::vector<float> b = a;
        ColorPlan plan;
        ASSERT_TRUE(plan.build(t.view()));
        EXPECT_EQ(plan.colorize(1000, a.data() + offset, a.data()), -1);
        EXPECT_TRUE(scalarColors(t.view(), 1000, b.data() + offset, b.data()));
        EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(float)), 0);
    }
}

TEST(ColorPlan, a_plan_can_be_built_again_for_another_table) {
    plain::Random random(59);
    random.withNan = false;
    ColorPlan plan;
    for (const size_t boundaries : {3000, 2, 200, 20}) {
        const plain::Table t = random.table(boundaries, false);
        ASSERT_TRUE(plan.build(t.view()));
        const std::vector<float> values = plain::interestingValues(t, &random, 100);
        const Expected want(t, values);
        const Coloring run(plan, values.data(), int64_t(values.size()));
        EXPECT_EQ(run.failing, want.failing);
        EXPECT_EQ(std::memcmp(run.out, want.colors.data(), want.colors.size() * sizeof(float)), 0);
    }
}

TEST(ColorPlan, many_threads_colour_parts_of_one_array_with_one_plan) {
    plain::Random random(61);
    random.withNan = false;
    const plain::Table t = random.table(25, false);
    std::vector<float> values(16 * 5003);
    for (float& v : values)
        v = random.in(t.positions.front(), t.positions.back());
    const Expected want(t, values);
    ASSERT_EQ(want.failing, -1);
    for (const KernelTarget target : targets()) {
        ColorPlan plan;
        ASSERT_TRUE(plan.buildFor(target, t.view()));
        std::vector<float> out(values.size() * 4);
        std::vector<std::thread> threads;
        for (size_t part = 0; part < 16; ++part)
            threads.emplace_back([&, part] { plan.colorize(5003, &values[part * 5003], &out[part * 5003 * 4]); });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(std::memcmp(out.data(), want.colors.data(), out.size() * sizeof(float)), 0);
    }
}

#if defined(__x86_64__)
TEST(ColorPlan, denormals_are_neither_flushed_on_the_way_in_nor_on_the_way_out) {
    constexpr unsigned flushToZero = 0x8000;
    constexpr unsigned denormalsAreZero = 0x0040;
    EXPECT_EQ(_mm_getcsr() & (flushToZero | denormalsAreZero), 0u);
    const plain::Table t = wholeOf(Rule::Gradient);
    ColorPlan plan;
    ASSERT_TRUE(plan.build(t.view()));
    const float value = 0.5f;
    EXPECT_EQ(Coloring(plan, &value, 1).failing, -1);
    EXPECT_EQ(_mm_getcsr() & (flushToZero | denormalsAreZero), 0u);
}
#endif
