#include "PresetTools.h"

#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <functional>

using namespace presets;

using ModifiedMarker = PresetTest;

TEST_F(ModifiedMarker, each_flagged_property_marks_and_no_other_does) {
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    EXPECT_FALSE(handler->isCurrentPresetModified());
    lyrSetValue(table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>(1, 0));
    lyrSetValue(table.get(), Lyr::Quantity, Lyrenum(Lyr::Area));
    table->setNameTemplate("name");
    EXPECT_FALSE(handler->isCurrentPresetModified()) << "none of these carries the flag";

    const std::pair<const char*, std::function<bool()>> writes[] = {
        {"PositionList",
         [&] {
             const float positions[] = {0, 2};
             return LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(table.get(), Lyr::PositionList)
                 ->initArray(0, 1, positions);
         }},
        {"ExtensionEnumList",
         [&] {
             const Lyrenum mode(5);
             return LyrValueArrayOPPtr<LyrValueArrayPropertyIF<Lyrenum>>(table.get(), Lyr::ExtensionEnumList)
                 ->initArray(0, 0, &mode);
         }},
        {"AutoLabel", [&] { return lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(0)); }},
        {"AutoScale", [&] { return lyrSetValue(table.get(), Lyr::AutoScale, Lyrenum(0)); }},
        {"CreationParameters",
         [&] {
             return lyrSetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{1, 2, 3});
         }},
        {"CreationType", [&] { return lyrSetValue(table.get(), Lyr::CreationType, Lyrenum(Lyr::HueCycle)); }},
        {"MaximumRange", [&] { return lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>(0, 1)); }},
    };
    for (const auto& [name, write] : writes) {
        handler->setCurrentPresetModified(false);
        EXPECT_TRUE(write()) << name;
        EXPECT_TRUE(handler->isCurrentPresetModified()) << name;
    }
}

TEST_F(ModifiedMarker, a_write_that_changes_nothing_does_not_mark) {
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(1));
    EXPECT_FALSE(handler->isCurrentPresetModified());
}

TEST_F(ModifiedMarker, a_changed_section_marks_through_the_tables_own_message) {
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    LyrObject* const section = model::listOf<LyrObjectLink>(*table, Lyr::SectionList)[1].getLink();
    LyrIOC::Message fromSection(section, Lyr::PropertyHasChanged, Lyr::Type);
    handler->iocCallback(fromSection);
    EXPECT_FALSE(handler->isCurrentPresetModified()) << "the section's own message alone is none of the table's";
    lyrSetValue(section, Lyr::Type, Lyrenum(Lyr::HueCycle));
    EXPECT_TRUE(handler->isCurrentPresetModified());
}

TEST_F(ModifiedMarker, messages_about_no_property_of_another_kind_or_of_another_table_do_not_mark) {
    const auto other = model::newTable();
    LyrIOC::Message noProperty(table.get(), Lyr::PropertyHasChanged, -1);
    LyrIOC::Message unknown(table.get(), Lyr::PropertyHasChanged, Lyr::Camera);
    LyrIOC::Message ofOther(other.get(), Lyr::PropertyHasChanged, Lyr::PositionList);
    LyrIOC::Message otherKind(table.get(), Lyr::Camera, Lyr::PositionList);
    for (LyrIOC::Message* message : {&noProperty, &unknown, &ofOther, &otherKind}) {
        EXPECT_TRUE(handler->iocCallback(*message));
        EXPECT_FALSE(handler->isCurrentPresetModified());
    }
    LyrIOC::Message right(table.get(), Lyr::PropertyHasChanged, Lyr::PositionList);
    handler->iocCallback(right);
    EXPECT_TRUE(handler->isCurrentPresetModified());
}

TEST_F(ModifiedMarker, a_table_that_is_no_longer_edited_does_not_mark) {
    const auto other = model::newTable();
    handler->setApplicationObject(other.get());
    lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(0));
    EXPECT_FALSE(handler->isCurrentPresetModified());
    lyrSetValue(other.get(), Lyr::AutoLabel, Lyrenum(0));
    EXPECT_TRUE(handler->isCurrentPresetModified());
}

TEST_F(ModifiedMarker, saving_and_applying_clear_it_and_undoing_an_edit_sets_it) {
    lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(0));
    ASSERT_TRUE(handler->savePresetAs("mine"));
    EXPECT_FALSE(handler->isCurrentPresetModified());
    EXPECT_EQ(handler->getCurrentPreset(), LyrString("mine"));
    EXPECT_EQ(handler->getCurrentPresetKind(), Lyr::UserPreset);
    {
        const LyqApplication::UserActionScope action(QStringLiteral("edit"));
        lyrSetValue(table.get(), Lyr::AutoScale, Lyrenum(0));
    }
    EXPECT_TRUE(handler->isCurrentPresetModified());
    ASSERT_TRUE(handler->applyPreset("mine", Lyr::UserPreset));
    EXPECT_FALSE(handler->isCurrentPresetModified());
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_TRUE(handler->isCurrentPresetModified());
    LyqApplication::instance().undoStack().clear();
}

TEST_F(ModifiedMarker, it_stays_when_saving_or_applying_fails) {
    ASSERT_TRUE(handler->savePresetAs("mine"));
    EXPECT_FALSE(handler->applyPreset("none", Lyr::UserPreset));
    EXPECT_FALSE(handler->isCurrentPresetModified());
    lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(0));
    EXPECT_FALSE(handler->applyPreset("none", Lyr::UserPreset));
    EXPECT_FALSE(handler->savePresetAs(""));
    EXPECT_TRUE(handler->isCurrentPresetModified());
    EXPECT_EQ(handler->getCurrentPreset(), LyrString("mine"));
}
