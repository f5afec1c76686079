#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

struct ErrorCodes : LyrError::Listener {
    std::vector<int> codes;
    bool errorEmitted(const LyrError::Message& message) override {
        codes.push_back(message.getCode());
        return true;
    }
};

std::vector<float> positionsOf(const LyrObjectRefPtr& table) {
    LyrValueArrayOPCache<float> cache;
    cache.load(table.get(), Lyr::PositionList);
    return cache.items();
}

std::vector<LyrObjectLink> sectionsOf(const LyrObjectRefPtr& table) {
    LyrValueArrayOPCache<LyrObjectLink> cache;
    cache.load(table.get(), Lyr::SectionList);
    return cache.items();
}

LyrRGBA<float> colorOf(const LyrObjectRefPtr& table, float value) {
    LyrRGBA<float> color(-1.0f, -1.0f, -1.0f, -1.0f);
    static_cast<const LyrColorLookupTable&>(*table.get()).getColor(value, color);
    return color;
}

class TableGenerators : public testing::Test {
protected:
    void SetUp() override { LyqApplication::instance().undoStack().clear(); }
    void TearDown() override { LyqApplication::instance().undoStack().clear(); }

    LyrObjectRefPtr table{"LyrColorLookupTable", Lyr::DocumentScope};
    ErrorCodes errors;
};

constexpr int REFUSED = static_cast<int>(0xF3CB0004u);

}  // namespace

TEST_F(TableGenerators, a_smooth_table_has_one_scheme_section_between_the_fixed_outer_colours) {
    ASSERT_TRUE(LyrColorLookupTable::createSmooth(table.get(), 2.0f, 5.0f, Lyr::HueCycle));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{2.0f, 5.0f}));
    const auto sections = sectionsOf(table);
    ASSERT_EQ(sections.size(), 3u);
    EXPECT_STREQ(sections[0].getLink()->getNameTemplate(), "ColorLookupTable_SectionNeg");
    EXPECT_STREQ(sections[1].getLink()->getNameTemplate(), "ColorLookupTable_Section");
    EXPECT_STREQ(sections[2].getLink()->getNameTemplate(), "ColorLookupTable_SectionPos");
    EXPECT_EQ(lyrGetValue<Lyrenum>(sections[1].getLink(), Lyr::Type, -1), Lyr::HueCycle);
    EXPECT_EQ(colorOf(table, 0.0f), LyrRGBA<float>(0.6f, 0.0f, 1.0f, 1.0f));
    EXPECT_EQ(colorOf(table, 6.0f), LyrRGBA<float>(1.0f, 0.0f, 0.6f, 1.0f));
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::AutoLabel, -1), 1);
    const auto parameters = lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{9.0f, 9.0f, 9.0f});
    EXPECT_EQ(parameters, (LyrVector3<float>{2.0f, 5.0f, 0.0f}));
}

TEST_F(TableGenerators, steps_are_rounded_to_a_whole_number_and_summed_up) {
    ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 10.0f, 3.0f, Lyr::Rainbow));
    const auto positions = positionsOf(table);
    ASSERT_EQ(positions.size(), 4u);
    // 10 / 3 in single precision, added up: 0, 3.3333333, 6.6666665, 10.
    EXPECT_EQ(positions[1], 3.3333333f);
    EXPECT_EQ(positions[2], 6.6666665f);
    EXPECT_EQ(positions[3], 10.0f);
    EXPECT_EQ(sectionsOf(table).size(), 5u);
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::AutoLabel, -1), 0);
    EXPECT_EQ(colorOf(table, 1.0f), LyrRGBA<float>(0.0f, 0.0f, 1.0f, 1.0f));
    EXPECT_EQ(colorOf(table, 9.0f), LyrRGBA<float>(1.0f, 0.0f, 0.0f, 1.0f));
}

TEST_F(TableGenerators, the_last_boundary_is_the_sum_of_the_steps_and_not_forced_to_the_end) {
    ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 1.0f, 0.1f, Lyr::Rainbow));
    const auto positions = positionsOf(table);
    ASSERT_EQ(positions.size(), 11u);
    EXPECT_EQ(positions.back(), 1.00000012f);
}

TEST_F(TableGenerators, a_step_wider_than_the_range_leaves_one_section_of_the_middle_colour) {
    ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 1.0f, 10.0f, Lyr::Rainbow));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{0.0f, 1.0f}));
    EXPECT_EQ(sectionsOf(table).size(), 3u);
    EXPECT_EQ(colorOf(table, 0.5f).green, 1.0f);
}

TEST_F(TableGenerators, sphere_segments_have_equally_spaced_cosines) {
    const float fifteenDegrees = 0.2617994f;
    ASSERT_TRUE(
        LyrColorLookupTable::createSphereSegmentStepped(table.get(), -1.0f, 2.0f, fifteenDegrees, Lyr::Rainbow));
    const auto positions = positionsOf(table);
    // (cos 90 - cos 0) / (cos 15 - cos 0) = -1 / -0.0340742 = 29.35, so 29 zones.
    ASSERT_EQ(positions.size(), 30u);
    EXPECT_EQ(positions[0], 0.0f);
    for (std::size_t k = 0; k < positions.size(); ++k) {
        EXPECT_NEAR(std::cos(positions[k]), 1.0 - static_cast<double>(k) / 29.0, 2e-6);
    }
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::AutoLabel, -1), 0);
}

TEST_F(TableGenerators, a_scheme_without_a_rule_gives_transparent_sections) {
    ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 4.0f, 1.0f, Lyr::Custom));
    EXPECT_EQ(colorOf(table, 2.5f), LyrRGBA<float>(0.0f, 0.0f, 0.0f, 0.0f));
}

TEST_F(TableGenerators, a_refused_table_keeps_its_content_but_not_its_parameters) {
    const auto before = sectionsOf(table);
    EXPECT_FALSE(LyrColorLookupTable::createStepped(table.get(), 3.0f, 3.0f, 1.0f, Lyr::HueCycle));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
    EXPECT_EQ(sectionsOf(table), before);
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{}),
              (LyrVector3<float>{3.0f, 3.0f, 1.0f}));
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::CreationType, -1), Lyr::HueCycle);
    EXPECT_EQ(errors.codes, std::vector<int>{REFUSED});
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
}

TEST_F(TableGenerators, parameters_that_make_no_table_are_refused) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float largest = std::numeric_limits<float>::max();
    LyrObject* object = table.get();
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(nullptr, 0.0f, 1.0f, Lyr::Rainbow));
    EXPECT_TRUE(errors.codes.empty());
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(object, 1.0f, 0.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(object, nan, 1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(object, 0.0f, inf, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, 0.0f, 1.0f, 0.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, 0.0f, 1.0f, -0.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, 0.0f, 1.0f, -1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, 0.0f, 1.0f, nan, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, 0.0f, 1.0f, 1e-30f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, -largest, largest, 1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(object, 0.0f, nan, 1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(object, 1.6f, 3.0f, 0.1f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(object, 0.0f, 1.0f, 0.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(object, 0.0f, 1.0f, -0.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(object, -inf, 1.0f, 0.1f, Lyr::Rainbow));
    EXPECT_EQ(errors.codes, std::vector<int>(14, REFUSED));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
}

TEST_F(TableGenerators, a_rebuild_is_one_step_that_brings_the_old_sections_back) {
    const auto before = sectionsOf(table);
    const LyrObjectPtr keptAlive(before[1].getLink());
    ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 4.0f, 1.0f, Lyr::Rainbow));
    const auto after = sectionsOf(table);
    LyqApplication& application = LyqApplication::instance();
    ASSERT_EQ(application.undoStack().count(), 1);
    EXPECT_EQ(application.undoStack().text(0), QString());
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(sectionsOf(table), before);
    EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::AutoLabel, -1), 1);
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{}),
              (LyrVector3<float>{0.0f, 4.0f, 1.0f}));
    ASSERT_TRUE(application.redo());
    EXPECT_EQ(sectionsOf(table), after);
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::AutoLabel, -1), 0);
}

TEST_F(TableGenerators, a_refused_rebuild_inside_an_outer_action_leaves_no_step) {
    {
        const LyqApplication::UserActionScope outer(QStringLiteral("Create smooth colortable"));
        EXPECT_FALSE(LyrColorLookupTable::createSmooth(table.get(), 1.0f, 1.0f, Lyr::HueCycle));
    }
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::CreationType, -1), Lyr::HueCycle);
}

TEST_F(TableGenerators, the_outermost_action_names_the_step) {
    {
        const LyqApplication::UserActionScope outer(QStringLiteral("Create smooth colortable"));
        EXPECT_TRUE(LyrColorLookupTable::createSmooth(table.get(), 0.0f, 1.0f, Lyr::HueCycle));
    }
    ASSERT_EQ(LyqApplication::instance().undoStack().count(), 1);
    EXPECT_EQ(LyqApplication::instance().undoStack().text(0), QStringLiteral("Create smooth colortable"));
}

TEST_F(TableGenerators, the_stepped_one_makes_its_scheme_section_before_it_looks_at_the_numbers_the_sphere_one_after) {
    struct Births : LyrMetaClass::FactoryHook {
        int count = 0;
        Births() { LyrMetaClass::addFactoryHook("LyrColorLookupTable::Section", this); }
        ~Births() override { LyrMetaClass::removeFactoryHook("LyrColorLookupTable::Section", this); }
        void objectCreated(LyrClass*) override { ++count; }
        void objectDestroyed(LyrClass*) override {}
    } births;
    EXPECT_FALSE(LyrColorLookupTable::createStepped(table.get(), 1.0f, 0.0f, 1.0f, Lyr::Rainbow));
    EXPECT_EQ(births.count, 1);
    EXPECT_FALSE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 1.0f, -1.0f, Lyr::Rainbow));
    EXPECT_EQ(births.count, 2);
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(table.get(), 1.0f, 0.0f, 1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(table.get(), 0.0f, 1.0f, 0.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(table.get(), 1.0f, 0.0f, Lyr::Rainbow));
    EXPECT_EQ(births.count, 2);
    // Four steps, two outer sections and the temporary one.
    EXPECT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 4.0f, 1.0f, Lyr::Rainbow));
    EXPECT_EQ(births.count, 2 + 7);
}

TEST_F(TableGenerators, the_actions_take_their_numbers_from_the_table_and_record_nothing_outside_of_a_user_action) {
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{1.0f, 3.0f, 1.0f}));
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::CreationType, Lyr::HueCycle));
    ASSERT_TRUE(table->runAction(Lyr::CreateStepped));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{1.0f, 2.0f, 3.0f}));
    ASSERT_TRUE(table->runAction(Lyr::CreateSmooth));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{1.0f, 3.0f}));
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
    // The third number is nothing to the smooth one, whatever it is.
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::CreationParameters,
                            LyrVector3<float>{1.0f, 2.0f, std::numeric_limits<float>::quiet_NaN()}));
    EXPECT_TRUE(table->runAction(Lyr::CreateSmooth));
}

TEST_F(TableGenerators, smooth_tables_may_be_as_wide_as_floats_go_and_equal_boundaries_of_zones_are_kept) {
    const float largest = std::numeric_limits<float>::max();
    EXPECT_TRUE(LyrColorLookupTable::createSmooth(table.get(), -largest, largest, Lyr::Rainbow));
    // Both cosines are 1: the quotient is 0 / 0, which makes the least number of boundaries.
    EXPECT_TRUE(LyrColorLookupTable::createSphereSegmentStepped(table.get(), 0.0f, 1e-5f, 1e-6f, Lyr::Rainbow));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{0.0f, 0.0f}));
    // The step's cosine is that of the start: the quotient is minus infinity.
    EXPECT_TRUE(LyrColorLookupTable::createSphereSegmentStepped(table.get(), 0.0f, 1.0f, 1e-6f, Lyr::Rainbow));
    EXPECT_EQ(positionsOf(table).size(), 2u);
}

TEST_F(TableGenerators, a_table_that_is_being_read_is_rebuilt_not_even_in_part) {
    for (const Lyrenum list : {Lyr::PositionList, Lyr::SectionList}) {
        const auto before = sectionsOf(table);
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> positions(table.get(), Lyr::PositionList);
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> sections(table.get(), Lyr::SectionList);
        const float* readPositions = list == Lyr::PositionList ? positions->lockArrayPtr() : nullptr;
        const LyrObjectLink* readSections = list == Lyr::SectionList ? sections->lockArrayPtr() : nullptr;
        ASSERT_TRUE(lyrSetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{0.0f, 4.0f, 1.0f}));
        EXPECT_FALSE(table->runAction(Lyr::CreateStepped));
        EXPECT_FALSE(LyrColorLookupTable::createSmooth(table.get(), 7.0f, 8.0f, Lyr::Rainbow));
        EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
        EXPECT_EQ(sectionsOf(table), before);
        EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::AutoLabel, -1), 1);
        if (readPositions) {
            positions->unlockArrayPtr(readPositions);
        } else {
            sections->unlockArrayPtr(readSections);
        }
    }
    EXPECT_TRUE(LyrColorLookupTable::createSmooth(table.get(), 7.0f, 8.0f, Lyr::Rainbow));
}

TEST_F(TableGenerators, what_is_no_table_is_refused_without_a_user_action) {
    const LyrObjectRefPtr section("LyrColorLookupTable::Section", Lyr::DocumentScope);
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(section.get(), 0.0f, 1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(nullptr, 0.0f, 1.0f, 1.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createSphereSegmentStepped(nullptr, 0.0f, 1.0f, 1.0f, Lyr::Rainbow));
    EXPECT_TRUE(errors.codes.empty());
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
}

TEST_F(TableGenerators, a_parameter_that_cannot_be_written_ends_the_call_before_anything_else) {
    LyrProperty* type = table->getProperty(Lyr::CreationType);
    type->setReadOnly(true);
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(table.get(), 0.0f, 1.0f, Lyr::HueCycle));
    type->setReadOnly(false);
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{}),
              (LyrVector3<float>{0.0f, 1.0f, 0.0f}));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(TableGenerators, an_outer_action_that_is_aborted_takes_back_the_table_but_not_its_parameters) {
    LyqApplication& application = LyqApplication::instance();
    const auto before = sectionsOf(table);
    {
        LyqApplication::UserActionScope outer(QStringLiteral("Outer"));
        ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 4.0f, 1.0f, Lyr::HueCycle));
        outer.abort();
    }
    EXPECT_EQ(sectionsOf(table), before);
    EXPECT_EQ(application.undoStack().count(), 0);
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::CreationType, -1), Lyr::HueCycle);
    {
        const LyqApplication::UserActionScope outer(QStringLiteral("Outer"));
        ASSERT_TRUE(LyrColorLookupTable::createStepped(table.get(), 0.0f, 2.0f, 1.0f, Lyr::InvertedRainbow));
    }
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(sectionsOf(table), before);
    EXPECT_EQ(lyrGetValue<Lyrenum>(table.get(), Lyr::CreationType, -1), Lyr::InvertedRainbow);
    EXPECT_EQ(lyrGetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{}),
              (LyrVector3<float>{0.0f, 2.0f, 1.0f}));
}

TEST_F(TableGenerators, a_table_whose_label_mode_cannot_be_written_stays_as_it_was) {
    const auto before = sectionsOf(table);
    LyrProperty* autoLabel = table->getProperty(Lyr::AutoLabel);
    autoLabel->setReadOnly(true);
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(table.get(), 7.0f, 8.0f, Lyr::Rainbow));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(table.get(), 7.0f, 9.0f, 1.0f, Lyr::Rainbow));
    EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
    EXPECT_EQ(sectionsOf(table), before);
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
    autoLabel->setReadOnly(false);
    EXPECT_TRUE(LyrColorLookupTable::createSmooth(table.get(), 7.0f, 8.0f, Lyr::Rainbow));
}

TEST_F(TableGenerators, a_table_that_has_lost_one_of_its_lists_keeps_the_other) {
    ASSERT_TRUE(table->removeProperty(Lyr::PositionList));
    const auto before = sectionsOf(table);
    EXPECT_FALSE(LyrColorLookupTable::createSmooth(table.get(), 7.0f, 8.0f, Lyr::Rainbow));
    EXPECT_EQ(sectionsOf(table), before);
    const LyrObjectRefPtr other("LyrColorLookupTable", Lyr::DocumentScope);
    ASSERT_TRUE(other->removeProperty(Lyr::SectionList));
    EXPECT_FALSE(LyrColorLookupTable::createStepped(other.get(), 7.0f, 8.0f, 1.0f, Lyr::Rainbow));
    EXPECT_EQ(positionsOf(other), (std::vector<float>{-1.0f, 1.0f}));
    EXPECT_EQ(errors.codes, std::vector<int>(2, static_cast<int>(0xF3CB0001u)));
}

TEST_F(TableGenerators, a_table_that_has_lost_its_parameters_is_refused_as_one_of_zeros) {
    ASSERT_TRUE(table->removeProperty(Lyr::CreationParameters));
    for (const Lyrenum action : {Lyr::CreateSmooth, Lyr::CreateStepped, Lyr::CreateSphereSegmentStepped}) {
        errors.codes.clear();
        EXPECT_FALSE(table->runAction(action));
        EXPECT_EQ(errors.codes, std::vector<int>{REFUSED});
    }
    EXPECT_EQ(positionsOf(table), (std::vector<float>{-1.0f, 1.0f}));
}
