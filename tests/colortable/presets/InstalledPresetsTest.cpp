#include "PresetTools.h"

#include <lyr_core/LyrColorMode.h>
#include <lys_core/LyqPresetFolders.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace presets;
using testing::UnorderedElementsAre;

namespace {

struct Lab {
    double l, a, b;
};

double linear(double encoded) {
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

/// CIE 1976 L*a*b* of an sRGB colour (IEC 61966-2-1, white D65).
Lab labOf(const LyrRGBA<float>& color) {
    const double r = linear(double(color.red)), g = linear(double(color.green)), b = linear(double(color.blue));
    const double x = (0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.9505;
    const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    const double z = (0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.089;
    const auto f = [](double t) { return t > 216.0 / 24389 ? std::cbrt(t) : (24389.0 / 27 * t + 16) / 116; };
    return {116 * f(y) - 16, 500 * (f(x) - f(y)), 200 * (f(y) - f(z))};
}

/// Oklab of an sRGB colour, by the forward matrices of its definition (Ottosson 2020).
Lab oklabOf(const LyrRGBA<float>& color) {
    const double r = linear(double(color.red)), g = linear(double(color.green)), b = linear(double(color.blue));
    const double l = std::cbrt(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = std::cbrt(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = std::cbrt(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

/// What somebody without L cones sees (Viénot, Brettel, Mollon 1999), as an encoded colour.
LyrRGBA<float> withoutRedCones(const LyrRGBA<float>& color) {
    const double r = linear(double(color.red)), g = linear(double(color.green)), b = linear(double(color.blue));
    const auto encode = [](double v) {
        return float(v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(std::min(v, 1.0), 1 / 2.4) - 0.055);
    };
    const double both = 0.11238 * r + 0.88762 * g;
    return {encode(both), encode(both), encode(std::max(0.0, 0.00401 * r - 0.00401 * g + b)), 1};
}

double distance(const Lab& p, const Lab& q) {
    return std::hypot(p.l - q.l, p.a - q.a, p.b - q.b);
}

class InstalledPresets : public PresetTest {
protected:
    InstalledPresets() { handler->setPresetFolder(Lyr::InstalledPreset, LyqPresetFolders::installed()); }

    /// The colours of a preset at equal steps from its first to its last position.
    std::vector<LyrRGBA<float>> colors(const char* name, int count = 65) {
        EXPECT_TRUE(handler->applyPreset(name, Lyr::InstalledPreset)) << handler->getMessage().utf8();
        const auto positions = model::listOf<float>(*table, Lyr::PositionList);
        std::vector<LyrRGBA<float>> result(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const float value =
                positions.front() + (positions.back() - positions.front()) * static_cast<float>(i) / float(count - 1);
            EXPECT_TRUE(table->getColor(value, result[static_cast<std::size_t>(i)]));
        }
        return result;
    }
    static std::vector<double> steps(const std::vector<LyrRGBA<float>>& list) {
        std::vector<double> result;
        for (std::size_t i = 1; i < list.size(); ++i) {
            result.push_back(distance(oklabOf(list[i]), oklabOf(list[i - 1])));
        }
        return result;
    }
};

const char* const UNIFORM[] = {"Uniform Grey", "Uniform Blue Yellow", "Uniform Heat", "Uniform Violet Green Yellow"};

}  // namespace

TEST_F(InstalledPresets, all_are_there_and_are_files_as_this_program_writes_them) {
    LyrStringList list;
    ASSERT_TRUE(handler->listPresets(list, Lyr::InstalledPreset)) << LyqPresetFolders::installed();
    std::vector<std::string> names;
    for (const LyrString& name : list) {
        names.emplace_back(name.utf8());
    }
    EXPECT_THAT(names, UnorderedElementsAre("Uniform Grey", "Uniform Blue Yellow", "Uniform Heat",
                                            "Uniform Violet Green Yellow", "Cubehelix", "Diverging Blue Orange",
                                            "Cyclic Blue Yellow", "Tolerance Both Sides", "Tolerance Upper Limit",
                                            "Tolerance Lower Limit", "Tolerance Pore Volume"));
    for (const LyqPresetStore::Entry& entry : handler->store(Lyr::InstalledPreset)->list()) {
        LyrObjectPtr proxy;
        LyrObjectFile::Report report;
        ASSERT_TRUE(LyrObjectFile::load(entry.path, proxy, report)) << report.message.utf8();
        EXPECT_TRUE(report.missing.empty() && report.warnings.empty());
        std::ifstream file(entry.path, std::ios::binary);
        EXPECT_EQ(textOf(*proxy), std::string(std::istreambuf_iterator<char>(file), {})) << entry.path;
    }
}

TEST_F(InstalledPresets, they_are_made_of_gradients_that_meet_and_end_in_constants) {
    for (const LyqPresetStore::Entry& entry : handler->store(Lyr::InstalledPreset)->list()) {
        ASSERT_TRUE(handler->applyPreset(entry.name, Lyr::InstalledPreset));
        const auto sections = model::listOf<LyrObjectLink>(*table, Lyr::SectionList);
        const auto positions = model::listOf<float>(*table, Lyr::PositionList);
        ASSERT_EQ(sections.size(), positions.size() + 1);
        EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
        for (std::size_t i = 0; i < sections.size(); ++i) {
            const bool isOuter = i == 0 || i + 1 == sections.size();
            const Lyrenum type = lyrGetValue(sections[i].getLink(), Lyr::Type, Lyrenum(-1));
            EXPECT_EQ(type, isOuter ? Lyr::Constant : Lyr::Gradient) << entry.name.utf8();
        }
    }
}

TEST_F(InstalledPresets, uniform_tables_grow_lighter_all_the_way_in_steps_of_like_size) {
    for (const char* name : UNIFORM) {
        const auto list = colors(name);
        const auto sizes = steps(colors(name, 33));
        const auto [least, most] = std::minmax_element(sizes.begin(), sizes.end());
        EXPECT_LT(*most / *least, 1.02) << name;
        for (std::size_t i = 1; i < list.size(); ++i) {
            EXPECT_GT(labOf(list[i]).l, labOf(list[i - 1]).l) << name << " at " << i;
            EXPECT_GT(labOf(withoutRedCones(list[i])).l, labOf(withoutRedCones(list[i - 1])).l) << name << " at " << i;
        }
        EXPECT_GT(labOf(list.back()).l - labOf(list.front()).l, 60) << name;
    }
}

TEST_F(InstalledPresets, cubehelix_follows_its_published_formula) {
    const auto list = colors("Cubehelix");
    for (std::size_t i = 0; i < list.size(); ++i) {
        const double t = double(i) / 64, angle = 2 * std::numbers::pi * (0.5 / 3 - 1.5 * t), a = t * (1 - t) / 2;
        const auto expected = [&](double c, double s) {
            return std::clamp(t + a * (c * std::cos(angle) + s * std::sin(angle)), 0.0, 1.0);
        };
        EXPECT_NEAR(double(list[i].red), expected(-0.14861, 1.78277), 1e-4) << i;
        EXPECT_NEAR(double(list[i].green), expected(-0.29227, -0.90649), 1e-4) << i;
        EXPECT_NEAR(double(list[i].blue), expected(1.97294, 0), 1e-4) << i;
    }
}

TEST_F(InstalledPresets, the_diverging_table_is_light_in_the_middle_and_has_two_arms_that_stay_apart) {
    const auto list = colors("Diverging Blue Orange");
    const std::size_t last = list.size() - 1;
    const Lab middle = labOf(list[last / 2]);
    EXPECT_LT(std::hypot(middle.a, middle.b), 2) << "grey";
    for (std::size_t i = 1; i <= last / 2; ++i) {
        EXPECT_GT(labOf(list[i]).l, labOf(list[i - 1]).l);
        EXPECT_GT(labOf(list[last - i]).l, labOf(list[last - i + 1]).l);
    }
    EXPECT_GT(distance(labOf(list[0]), labOf(list[last])), 60);
    EXPECT_GT(distance(labOf(withoutRedCones(list[0])), labOf(withoutRedCones(list[last]))), 40);
    EXPECT_LT(std::abs(labOf(list[0]).l - labOf(list[last]).l), 5);
}

TEST_F(InstalledPresets, the_cyclic_table_ends_where_it_begins_and_measures_angles) {
    const auto list = colors("Cyclic Blue Yellow");
    EXPECT_EQ(list.front(), list.back());
    const auto sizes = steps(colors("Cyclic Blue Yellow", 33));
    const auto [least, most] = std::minmax_element(sizes.begin(), sizes.end());
    EXPECT_LT(*most / *least, 1.05) << "chords of equal arcs";
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::Quantity, Lyrenum(-1)), Lyr::Angle);
    EXPECT_FLOAT_EQ(model::listOf<float>(*table, Lyr::PositionList).front(), -std::numbers::pi_v<float>);
    const Lab quarter = labOf(list[16]), threeQuarters = labOf(list[48]);
    EXPECT_GT(distance(quarter, threeQuarters), 40) << "the way up is told from the way down";
}

TEST_F(InstalledPresets, the_tolerance_of_pores_measures_volumes_just_below_those_of_balls_of_1_and_2_mm) {
    ASSERT_TRUE(handler->applyPreset("Tolerance Pore Volume", Lyr::InstalledPreset)) << handler->getMessage().utf8();
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::Quantity, Lyrenum(-1)), Lyr::Volume);
    const auto limits = model::listOf<float>(*table, Lyr::PositionList);
    ASSERT_EQ(limits.size(), 2u);
    for (const double diameter : {1.0, 2.0}) {
        const double ball = std::numbers::pi / 6 * diameter * diameter * diameter;
        const double limit = limits[diameter > 1.5 ? 1 : 0];
        EXPECT_LE(limit, ball);
        EXPECT_GE(limit, 0.9 * ball);
    }
}

TEST_F(InstalledPresets, tolerance_tables_step_at_their_limits_and_are_absolute) {
    const LyrRGBA<float> fail{213 / 255.0f, 94 / 255.0f, 0, 1}, warn{230 / 255.0f, 159 / 255.0f, 0, 1},
        pass{0, 158 / 255.0f, 115 / 255.0f, 1};
    const struct {
        const char* name;
        std::vector<std::pair<float, LyrRGBA<float>>> expected;
    } cases[] = {
        {"Tolerance Both Sides",
         {{-1, fail}, {-0.15f, warn}, {-0.09f, pass}, {0, pass}, {0.1f, pass}, {0.11f, warn}, {0.21f, fail}}},
        {"Tolerance Upper Limit", {{-1, pass}, {0.09f, pass}, {0.11f, warn}, {0.2f, warn}, {0.21f, fail}}},
        {"Tolerance Lower Limit", {{0.99f, fail}, {1.01f, warn}, {1.5f, warn}, {1.51f, pass}, {9, pass}}},
        {"Tolerance Pore Volume", {{0, pass}, {0.49f, pass}, {0.51f, warn}, {4, warn}, {4.01f, fail}, {99, fail}}},
    };
    for (const auto& [name, expected] : cases) {
        ASSERT_TRUE(handler->applyPreset(name, Lyr::InstalledPreset)) << handler->getMessage().utf8();
        EXPECT_TRUE(handler->isAbsolutePreset());
        for (const auto& [value, color] : expected) {
            LyrRGBA<float> out;
            ASSERT_TRUE(table->getColor(value, out));
            EXPECT_NEAR(out.red, color.red, 1e-5) << name << " " << value;
            EXPECT_NEAR(out.green, color.green, 1e-5) << name << " " << value;
            EXPECT_NEAR(out.blue, color.blue, 1e-5) << name << " " << value;
        }
    }
    const Lab seen[] = {labOf(withoutRedCones(fail)), labOf(withoutRedCones(warn)), labOf(withoutRedCones(pass))};
    EXPECT_GT(distance(seen[0], seen[1]), 15);
    EXPECT_GT(distance(seen[1], seen[2]), 15);
    EXPECT_GT(distance(seen[0], seen[2]), 15);
}
