#include "GeneratorModel.h"
#include "ModelTools.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrRoleManager.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <sstream>
#include <string>

using namespace model;

namespace {

struct Scheme {
    Lyrenum type;
    plain::Rule rule;
};

const Scheme& schemeAt(std::size_t index) {
    static const Scheme schemes[] = {
        {Lyr::Rainbow, plain::Rule::Rainbow},      {Lyr::InvertedRainbow, plain::Rule::InvertedRainbow},
        {Lyr::HueCycle, plain::Rule::HueCycle},    {Lyr::BlackGreenBlueRed, plain::Rule::BlackGreenBlueRed},
        {Lyr::Constant, plain::Rule::Constant},    {Lyr::Gradient, plain::Rule::Gradient},
        {Lyr::Continue, plain::Rule::Continue},    {Lyr::Custom, plain::Rule::None},
        {Lyr::InvertedHueCycle, plain::Rule::None}};
    return schemes[index % std::size(schemes)];
}

std::vector<std::uint32_t> bitsOf(const std::vector<float>& values) {
    std::vector<std::uint32_t> bits;
    for (const float value : values) {
        bits.push_back(std::bit_cast<std::uint32_t>(value));
    }
    return bits;
}

struct Parameters {
    float from;
    float to;
    float step;
    Scheme scheme;
};

std::ostream& operator<<(std::ostream& out, const Parameters& p) {
    const auto precision = out.precision(9);
    out << p.from << " to " << p.to << " by " << p.step << ", scheme " << p.scheme.type.getName();
    out.precision(precision);
    return out;
}

/** Ranges and steps as people give them, then such as lie at the edges of single precision. */
std::vector<Parameters> parameterSets(bool angles) {
    std::mt19937 engine(angles ? 7u : 8u);
    const auto in = [&](double low, double high) {
        return static_cast<float>(low + (high - low) * static_cast<double>(engine() >> 8) / 16777216.0);
    };
    std::vector<Parameters> sets;
    for (std::size_t i = 0; i < 330; ++i) {
        Parameters p{0.0f, 1.0f, 0.1f, schemeAt(i)};
        const float scale = std::pow(10.0f, in(-6.0, 6.0));
        p.from = angles ? in(-0.3, 1.4) : in(-1.0, 1.0) * scale;
        p.to = angles ? in(double(p.from) + 0.01, 1.9) : p.from + in(0.001, 1.0) * scale;
        p.step = (p.to - p.from) / in(0.3, i % 10 == 0 ? 3000.0 : 60.0);
        sets.push_back(p);
    }
    const float tiny = std::numeric_limits<float>::denorm_min();
    const float largest = std::numeric_limits<float>::max();
    const float numbers[][3] = {{0, 1, 0.1f},
                                {0, 10, 3},
                                {0, 1, 10},
                                {0, 1, 2},
                                {0, 1, 1.9999999f},
                                {0, 1, 0.6666667f},
                                {0, 1.5707964f, 0.2617994f},
                                {0.0f, 1.5707964f, 1e-4f},
                                {-0.0f, 1, 0.5f},
                                {-1, 0, 0.25f},
                                {0, tiny, tiny},
                                {1, std::nextafter(1.0f, 2.0f), 1e-9f},
                                {1, std::nextafter(1.0f, 2.0f), 1},
                                {0, largest, 1e37f},
                                {-1e38f, 1e38f, 3e37f},
                                {16777215, 16777216, 0.5f},
                                {0, 1, 1e-5f},
                                {1e-40f, 1e-38f, 1e-39f},
                                {0, 1.0f, largest},
                                {0.5f, 1.0f, 1e-7f}};
    for (std::size_t i = 0; i < std::size(numbers); ++i) {
        sets.push_back({numbers[i][0], numbers[i][1], numbers[i][2], schemeAt(i)});
    }
    return sets;
}

/** What no generator writes. */
struct Untouched {
    std::vector<Color> extensionColors;
    std::vector<Lyrenum> extensionModes;
    LyrValuePair<Lyrenum> finiteMode;
    Lyrenum quantity;
    Lyrenum autoScale;
    LyrValuePair<float> maximumRange;
    bool operator==(const Untouched&) const = default;
};

Untouched readUntouched(const Table& table) {
    return {listOf<Color>(table, Lyr::ExtensionColorList),
            listOf<Lyrenum>(table, Lyr::ExtensionEnumList),
            lyrGetValue(&table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{}),
            lyrGetValue(&table, Lyr::Quantity, Lyrenum(-1)),
            lyrGetValue(&table, Lyr::AutoScale, Lyrenum(-1)),
            lyrGetValue(&table, Lyr::MaximumRange, LyrValuePair<float>{})};
}

/** A table with a value of its own in all that no generator writes. */
Held<Table> markedTable(Lyrenum autoLabel) {
    Held<Table> table = newTable();
    setList<Color>(*table, Lyr::ExtensionColorList, {Color(0.1f, 0.2f, 0.3f, 0.4f)});
    setList<Lyrenum>(*table, Lyr::ExtensionEnumList, {Lyr::Continue, Lyr::Custom});
    setFiniteMode(*table, 1, 1);
    lyrSetValue(table.get(), Lyr::Quantity, Lyr::Angle);
    lyrSetValue(table.get(), Lyr::AutoScale, Lyrenum(0));
    lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{-3.0f, 4.0f});
    lyrSetValue(table.get(), Lyr::AutoLabel, autoLabel);
    return table;
}

/** A role that sections take on by default while this lives. */
class SectionRole {
public:
    static constexpr int ROLE = 900000100;
    SectionRole() {
        LyrObject::RoleManager::addRole(ROLE);
        LyrObject::RoleManager::addDefaultRole(Section::metaClass(), ROLE);
    }
    ~SectionRole() {
        LyrObject::RoleManager::removeDefaultRole(Section::metaClass(), ROLE);
        LyrObject::RoleManager::removeRole(ROLE);
    }
    SectionRole(const SectionRole&) = delete;
    SectionRole& operator=(const SectionRole&) = delete;
};

/** Exactly one point, at position 0, in each list. */
void expectConstant(const LyrObject* section, const plain::Color& color) {
    ASSERT_TRUE(section);
    EXPECT_EQ(lyrGetValue(section, Lyr::Type, Lyrenum(-1)), Lyr::Constant);
    const Lyrenum lists[] = {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
    for (int channel = 0; channel < 4; ++channel) {
        const auto points = listOf<Point>(*section, lists[channel]);
        ASSERT_EQ(points.size(), 1u);
        EXPECT_EQ(bitsOf({points[0].x, points[0].y}), bitsOf({0.0f, color.c[channel]})) << "channel " << channel;
    }
}

constexpr plain::Color VIOLET{{0.6f, 0.0f, 1.0f, 1.0f}};
constexpr plain::Color PINK{{1.0f, 0.0f, 0.6f, 1.0f}};

void expectStepSections(const Table& table, const plain::Generated& expected) {
    const auto sections = sectionsOf(table);
    ASSERT_EQ(sections.size(), expected.colors.size() + 2);
    expectConstant(sections.front(), VIOLET);
    for (std::size_t i = 0; i < expected.colors.size() && !testing::Test::HasFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        expectConstant(sections[i + 1], expected.colors[i]);
    }
    expectConstant(sections.back(), PINK);
    for (const LyrObject* section : sections) {
        ASSERT_STREQ(section->getNameTemplate(), "");
        ASSERT_FALSE(section->isRoleActive(SectionRole::ROLE));
        ASSERT_EQ(section->getScope(), Lyr::DocumentScope);
        ASSERT_EQ(section->getParentLink().getOwner(), &table);
    }
}

void expectSmoothSections(const Table& table, Lyrenum scheme) {
    const auto sections = sectionsOf(table);
    ASSERT_EQ(sections.size(), 3u);
    expectConstant(sections[0], VIOLET);
    EXPECT_EQ(lyrGetValue(sections[1], Lyr::Type, Lyrenum(-1)), scheme);
    for (const Lyrenum list : {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha}) {
        EXPECT_TRUE(listOf<Point>(*sections[1], list).empty());
    }
    expectConstant(sections[2], PINK);
    const char* names[] = {"ColorLookupTable_SectionNeg", "ColorLookupTable_Section", "ColorLookupTable_SectionPos"};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_STREQ(sections[i]->getNameTemplate(), names[i]);
        EXPECT_TRUE(sections[i]->isRoleActive(SectionRole::ROLE));
        EXPECT_EQ(sections[i]->getScope(), Lyr::DocumentScope);
    }
}

class TableGeneratorsSweep : public testing::Test {
protected:
    TableGeneratorsSweep() { LyqApplication::instance().undoStack().clear(); }
    ~TableGeneratorsSweep() override { LyqApplication::instance().undoStack().clear(); }

    /** Runs a stepped generator on a marked table and compares it with the model's. True if a table was made. */
    template <class Create, class Model>
    bool compareStepped(const Parameters& p, Create create, Model modelled) {
        std::ostringstream name;
        name << p;
        SCOPED_TRACE(name.str());
        const auto expected = modelled(p.from, p.to, p.step, p.scheme.rule);
        if (expected && expected->positions.size() > 20000) {
            return false;  // takes its time, and shows no more than a smaller one
        }
        const Held<Table> table = markedTable(1);
        const Untouched before = readUntouched(*table);
        const auto sectionsBefore = sectionsOf(*table);
        EXPECT_EQ(create(table.get(), p.from, p.to, p.step, p.scheme.type), expected.has_value());
        EXPECT_EQ(readUntouched(*table), before);
        EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationType, Lyrenum(-1)), p.scheme.type);
        EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{}),
                  (LyrVector3<float>{p.from, p.to, p.step}));
        if (expected) {
            EXPECT_EQ(bitsOf(listOf<float>(*table, Lyr::PositionList)), bitsOf(expected->positions));
            EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)), 0);
            expectStepSections(*table, *expected);
        } else {
            EXPECT_EQ(errors.take(), (std::vector<Errors::Entry>{{table.get(), static_cast<int>(0xF3CB0004u)}}));
            EXPECT_EQ(sectionsOf(*table), sectionsBefore);
            EXPECT_EQ(listOf<float>(*table, Lyr::PositionList), (std::vector<float>{-1.0f, 1.0f}));
            EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)), 1);
        }
        LyqApplication::instance().undoStack().clear();
        return expected.has_value();
    }

    Errors errors;
    SectionRole role;
};

}  // namespace

TEST_F(TableGeneratorsSweep, stepped_tables_have_the_modelled_positions_and_colours_to_the_last_bit) {
    int made = 0;
    for (const Parameters& p : parameterSets(false)) {
        made += compareStepped(p, LyrColorLookupTable::createStepped, plain::stepped) ? 1 : 0;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GE(made, 340);
}

TEST_F(TableGeneratorsSweep, sphere_segments_have_the_modelled_positions_and_colours_to_the_last_bit) {
    int made = 0;
    for (const Parameters& p : parameterSets(true)) {
        made += compareStepped(p, LyrColorLookupTable::createSphereSegmentStepped, plain::sphereSegments) ? 1 : 0;
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GE(made, 300);
}

TEST_F(TableGeneratorsSweep, smooth_tables_hold_the_two_ends_and_the_scheme_itself) {
    for (const Parameters& p : parameterSets(false)) {
        std::ostringstream name;
        name << p;
        SCOPED_TRACE(name.str());
        const Held<Table> table = markedTable(0);
        const Untouched before = readUntouched(*table);
        ASSERT_TRUE(plain::smooth(p.from, p.to));
        ASSERT_TRUE(LyrColorLookupTable::createSmooth(table.get(), p.from, p.to, p.scheme.type));
        EXPECT_EQ(bitsOf(listOf<float>(*table, Lyr::PositionList)), bitsOf({p.from, p.to}));
        EXPECT_EQ(lyrGetValue(table.get(), Lyr::AutoLabel, Lyrenum(-1)), 1);
        EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{}),
                  (LyrVector3<float>{p.from, p.to, 0.0f}));
        EXPECT_EQ(readUntouched(*table), before);
        expectSmoothSections(*table, p.scheme.type);
        ASSERT_FALSE(HasFailure());
        LyqApplication::instance().undoStack().clear();
    }
}

TEST_F(TableGeneratorsSweep, steps_are_refused_just_where_there_would_be_more_than_a_million_boundaries) {
    const Held<Table> table = newTable();
    // 999,999 steps make a million boundaries; half a step more is rounded to one too many.
    ASSERT_FALSE(plain::stepped(0.0f, 999999.5f, 1.0f, plain::Rule::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 999999.5f, 1.0f, Lyr::Rainbow));
    EXPECT_EQ(errors.take().size(), 1u);
    const auto expected = plain::stepped(0.0f, 50000.0f, 1.0f, plain::Rule::HueCycle);
    ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 50000.0f, 1.0f, Lyr::HueCycle));
    EXPECT_EQ(bitsOf(listOf<float>(*table, Lyr::PositionList)), bitsOf(expected->positions));
    EXPECT_EQ(sectionsOf(*table).size(), 50002u);
}

TEST_F(TableGeneratorsSweep, the_old_sections_and_the_temporary_one_are_gone_when_nobody_holds_them) {
    const auto living = [] {
        return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("LyrColorLookupTable::Section"));
    };
    const Held<Table> table = newTable();
    ASSERT_TRUE(table->runAction(Lyr::CreateSmooth) == false);
    EXPECT_EQ(errors.take().size(), 1u);
    const auto before = living();
    lyrSetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{0.0f, 10.0f, 1.0f});
    ASSERT_TRUE(table->runAction(Lyr::CreateStepped));
    EXPECT_EQ(living(), before - 3 + 12);
    ASSERT_TRUE(table->runAction(Lyr::CreateSmooth));
    EXPECT_EQ(living(), before);
}
