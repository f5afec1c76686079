#include "PresetTools.h"

#include <lyr_core/LyrClassManager.h>
#include <lys_core/LyqApplication.h>

#include <QCoreApplication>
#include <QTranslator>
#include <QUndoStack>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <map>
#include <string>

using namespace presets;
using testing::ElementsAre;
using testing::HasSubstr;

using LyqPresetColortableHandlerTest = PresetTest;

namespace {

long long liveCount(const char* className) {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern(className));
}

Lyrenum middleType(const LyrObject& table) {
    const auto sections = model::listOf<LyrObjectLink>(table, Lyr::SectionList);
    return sections.size() == 3 ? lyrGetValue(sections[1].getLink(), Lyr::Type, Lyrenum(-1)) : Lyrenum(-1);
}

/** Texts as a translation has them, as long as this lives. */
class GermanTexts : public QTranslator {
public:
    GermanTexts() { QCoreApplication::installTranslator(this); }
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char*, int) const override {
        const std::map<std::string, QString> texts{
            {"Rainbow", "Regenbogen"}, {"Reverse Rainbow", "Umgekehrter Regenbogen"}, {"Colortable", "Farbtabelle"}};
        const auto found = texts.find(text);
        return std::string(context) == "QObject" && found != texts.end() ? found->second : QString();
    }
};

/** What comes of cloning an Odd. */
class NoObject : public LyrClass {
public:
    NoObject() {
        ++made;
        ++alive;
    }
    ~NoObject() override { --alive; }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("PresetTestNoObject", sizeof(NoObject), nullptr, nullptr, "test", 0, nullptr, 0,
                                       0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
    static inline int made = 0;
    static inline int alive = 0;
};

class OddFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void*) const override { return nullptr; }
    LyrClass* createCopy(const LyrClass*, void*) const override { return new NoObject; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
    bool isStorable() const override { return false; }
};

/** An object whose clones are none. */
class Odd : public LyrObject {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("PresetTestOdd", sizeof(Odd), &LyrObject::metaClass(), new OddFactory, "test", 0,
                                       nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

}  // namespace

TEST_F(LyqPresetColortableHandlerTest, it_is_made_by_name_without_category_and_is_not_copied) {
    const LyrObjectPtr made(static_cast<LyrObject*>(LyrMetaClass::create("LyqPresetColortableHandler")));
    auto* second = dynamic_cast<LyqPresetColortableHandler*>(made.get());
    ASSERT_TRUE(second);
    EXPECT_EQ(second->getCategory(), -1);
    EXPECT_EQ(second->getName(), LyrString(""));
    EXPECT_FALSE(second->isAbsolutePreset());
    EXPECT_EQ(second->getProtectedFlags() & 0x110100u, 0x110100u);
    EXPECT_EQ(second->getMetaClass().getParent(), &LyrObject::metaClass());
    EXPECT_FALSE(second->getMetaClass().isStorable());
    EXPECT_EQ(second->getMetaClass().clone(second), nullptr);
    EXPECT_FALSE(second->getMetaClass().copy(second, handler));
    errors.take();
    EXPECT_EQ(handler->getCategory(), Lyr::ColorLookupTable);
    EXPECT_EQ(handler->getName(), LyrString("tables"));
}

TEST_F(LyqPresetColortableHandlerTest, the_built_in_list_has_two_names_and_does_not_grow) {
    LyrStringList list{LyrString("before")};
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(handler->getPresetList(list, Lyr::DefaultPreset));
        EXPECT_THAT(list, ElementsAre(LyrString("Rainbow"), LyrString("Reverse Rainbow")));
    }
    EXPECT_TRUE(handler->getPresetList(list, Lyr::UserPreset));
    EXPECT_TRUE(list.isEmpty());
    EXPECT_FALSE(handler->getPresetList(list, Lyrenum(1)));
}

TEST_F(LyqPresetColortableHandlerTest, rainbow_is_the_default_table_and_reverse_rainbow_has_its_middle_reversed) {
    makeUnusual(*table);
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    // A default table has no name that could take the place of the present one.
    const auto fresh = model::newTable();
    fresh->setNameTemplate("A table with ümläuts");
    EXPECT_EQ(textOf(*table), textOf(*fresh));
    ASSERT_TRUE(handler->applyPreset("Reverse Rainbow", Lyr::DefaultPreset));
    EXPECT_EQ(middleType(*table), Lyr::InvertedRainbow);
    const auto sections = model::listOf<LyrObjectLink>(*fresh, Lyr::SectionList);
    lyrSetValue(sections[1].getLink(), Lyr::Type, Lyrenum(Lyr::InvertedRainbow));
    EXPECT_EQ(textOf(*table), textOf(*fresh));
    EXPECT_TRUE(handler->presetToApp("anything else", Lyr::DefaultPreset)) << "is made as the first one is";
    EXPECT_EQ(middleType(*table), Lyr::Rainbow);
}

TEST_F(LyqPresetColortableHandlerTest, save_and_load_keep_every_property_of_table_and_sections) {
    makeUnusual(*table);
    const std::string before = textOf(*table);
    ASSERT_TRUE(handler->savePresetAs("mine")) << handler->getMessage().utf8();
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    EXPECT_NE(textOf(*table), before);
    ASSERT_TRUE(handler->applyPreset("mine", Lyr::UserPreset)) << handler->getMessage().utf8();
    EXPECT_EQ(textOf(*table), before);
    const auto positions = model::listOf<float>(*table, Lyr::PositionList);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(positions[0]), 0x80000001u);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(positions[1]), 0x80000000u);
}

TEST_F(LyqPresetColortableHandlerTest, the_proxy_holds_a_clone_and_nothing_is_left_over) {
    makeUnusual(*table);
    const long long tables = liveCount("LyrColorLookupTable");
    const long long sections = liveCount("LyrColorLookupTable::Section");
    ASSERT_TRUE(handler->appToPreset("mine", Lyr::UserPreset));
    EXPECT_EQ(liveCount("LyrPresetColortableProxyObject"), 0);
    EXPECT_EQ(liveCount("LyrColorLookupTable"), tables);
    ASSERT_TRUE(handler->presetToApp("mine", Lyr::UserPreset));
    EXPECT_EQ(liveCount("LyrPresetColortableProxyObject"), 0);
    EXPECT_EQ(liveCount("LyrColorLookupTable"), tables);
    EXPECT_EQ(liveCount("LyrColorLookupTable::Section"), sections);
}

TEST_F(LyqPresetColortableHandlerTest, the_mode_is_saved_and_a_load_sets_it_for_the_next_save) {
    handler->setAbsolutePreset(true);
    ASSERT_TRUE(handler->savePresetAs("absolute"));
    handler->setAbsolutePreset(false);
    ASSERT_TRUE(handler->savePresetAs("relative"));
    EXPECT_EQ(lyrGetValue(stored("absolute").get(), Lyr::AbsoluteMode, Lyrenum(9)), 1);
    EXPECT_EQ(lyrGetValue(stored("relative").get(), Lyr::AbsoluteMode, Lyrenum(9)), 0);
    const auto range = lyrGetValue(stored("absolute").get(), Lyr::ReferenceRange, LyrValuePair<float>(0, 0));
    EXPECT_TRUE(Interval(range).isEmpty());
    ASSERT_TRUE(handler->applyPreset("absolute", Lyr::UserPreset));
    EXPECT_TRUE(handler->isAbsolutePreset());
    ASSERT_TRUE(handler->applyPreset("relative", Lyr::UserPreset));
    EXPECT_FALSE(handler->isAbsolutePreset());
    handler->setAbsolutePreset(true);
    ASSERT_TRUE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    EXPECT_FALSE(handler->isAbsolutePreset()) << "built-in presets are relative";
}

TEST_F(LyqPresetColortableHandlerTest, a_file_without_a_mode_counts_as_absolute_and_one_without_a_range_as_empty) {
    LyrObjectPtr handle(new StretchingHandler(folder.path()));
    auto& stretching = static_cast<StretchingHandler&>(*handle);
    stretching.setApplicationObject(table.get());
    stretching.data = Interval(2, 3);
    ASSERT_TRUE(stretching.savePresetAs("mine"));
    const std::string file = *folder.names().begin();
    std::string text = folder.read(file);
    const auto begin = text.find("    \"AbsoluteMode\"");
    text.erase(begin, text.find("    \"ColorLookupTable\"") - begin);
    folder.write(file, text);
    ASSERT_TRUE(stretching.applyPreset("mine", Lyr::UserPreset)) << stretching.getMessage().utf8();
    ASSERT_EQ(stretching.adjusted.size(), 1u);
    EXPECT_TRUE(stretching.adjusted[0].first);
    EXPECT_TRUE(stretching.adjusted[0].second.isEmpty());
    EXPECT_TRUE(stretching.isAbsolutePreset());
}

TEST_F(LyqPresetColortableHandlerTest, a_handler_with_the_two_hooks_stretches_relative_presets_only) {
    LyrObjectPtr handle(new StretchingHandler(folder.path()));
    auto& stretching = static_cast<StretchingHandler&>(*handle);
    stretching.setApplicationObject(table.get());
    stretching.data = Interval(-1, 1);
    ASSERT_TRUE(stretching.savePresetAs("relative"));
    stretching.setAbsolutePreset(true);
    ASSERT_TRUE(stretching.savePresetAs("absolute"));
    stretching.data = Interval(10, 14);
    ASSERT_TRUE(stretching.applyPreset("relative", Lyr::UserPreset));
    EXPECT_THAT(model::listOf<float>(*table, Lyr::PositionList), ElementsAre(10, 14));
    ASSERT_TRUE(stretching.applyPreset("absolute", Lyr::UserPreset));
    EXPECT_THAT(model::listOf<float>(*table, Lyr::PositionList), ElementsAre(-1, 1));
    EXPECT_THAT(stretching.adjusted,
                ElementsAre(std::make_pair(false, Interval(-1, 1)), std::make_pair(true, Interval(-1, 1))));
    // The hook's writes belong to the step.
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_THAT(model::listOf<float>(*table, Lyr::PositionList), ElementsAre(10, 14));
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_THAT(model::listOf<float>(*table, Lyr::PositionList), ElementsAre(-1, 1));
}

TEST_F(LyqPresetColortableHandlerTest, the_hooks_of_this_class_do_nothing) {
    const std::string before = textOf(*table);
    EXPECT_FALSE(handler->adjustLookupTable(false, Interval(0, 1)));
    EXPECT_TRUE(handler->getCurrentReferenceRange().isEmpty());
    EXPECT_EQ(textOf(*table), before);
}

TEST_F(LyqPresetColortableHandlerTest, applying_is_one_step_that_restores_the_table_whole) {
    makeUnusual(*table);
    const std::string before = textOf(*table);
    QUndoStack& history = LyqApplication::instance().undoStack();
    history.clear();
    ASSERT_TRUE(handler->applyPreset("Reverse Rainbow", Lyr::DefaultPreset));
    const std::string after = textOf(*table);
    EXPECT_EQ(history.count(), 1);
    EXPECT_THAT(history.undoText().toStdString(), HasSubstr("Reverse Rainbow"));
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(textOf(*table), before) << "FiniteMode, Quantity, MaximumRange and how it was created as well";
    ASSERT_TRUE(LyqApplication::instance().redo());
    EXPECT_EQ(textOf(*table), after);
    history.clear();
}

TEST_F(LyqPresetColortableHandlerTest, undo_takes_back_a_name_that_a_preset_brought) {
    const auto named = model::newTable();
    named->setNameTemplate("Named");
    handler->setApplicationObject(named.get());
    ASSERT_TRUE(handler->savePresetAs("mine"));
    handler->setApplicationObject(table.get());
    const std::string before = textOf(*table);
    ASSERT_TRUE(handler->applyPreset("mine", Lyr::UserPreset));
    EXPECT_STREQ(table->getNameTemplate(), "Named");
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(textOf(*table), before);
    LyqApplication::instance().undoStack().clear();
}

TEST_F(LyqPresetColortableHandlerTest, undo_brings_back_what_the_file_of_the_table_held_beyond_this_version) {
    std::string text = textOf(*table);
    text.insert(text.find("\"properties\": {") + 15, "\"FromLater\": [1, 2],");
    LyrObjectPtr read;
    LyrObjectFile::Report report;
    ASSERT_TRUE(LyrObjectFile::read(text, read, report)) << report.message.utf8();
    const std::string before = textOf(*read);
    ASSERT_THAT(before, HasSubstr("FromLater"));
    ASSERT_TRUE(handler->savePresetAs("plain"));
    handler->setApplicationObject(read.get());
    LyqApplication::instance().undoStack().clear();
    ASSERT_TRUE(handler->applyPreset("plain", Lyr::UserPreset));
    const std::string after = textOf(*read);
    EXPECT_EQ(after.find("FromLater"), std::string::npos);
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(textOf(*read), before);
    ASSERT_TRUE(LyqApplication::instance().redo());
    EXPECT_EQ(textOf(*read), after);
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(textOf(*read), before);
    LyqApplication::instance().undoStack().clear();
    handler->setApplicationObject(table.get());
}

TEST_F(LyqPresetColortableHandlerTest, without_a_table_nothing_is_saved_or_applied) {
    handler->setApplicationObject(nullptr);
    EXPECT_FALSE(handler->appToPreset("a", Lyr::UserPreset));
    EXPECT_FALSE(handler->presetToApp("Rainbow", Lyr::DefaultPreset));
    EXPECT_FALSE(handler->savePresetAs("a"));
    EXPECT_FALSE(handler->getMessage().isEmpty());
    EXPECT_FALSE(handler->applyPreset("Rainbow", Lyr::DefaultPreset));
    EXPECT_FALSE(handler->getMessage().isEmpty());
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(LyqPresetColortableHandlerTest, a_table_that_goes_is_no_longer_the_application_object) {
    const auto before = liveCount("LyrColorLookupTable");
    {
        const auto other = model::newTable();
        handler->setApplicationObject(other.get());
    }
    EXPECT_EQ(handler->getApplicationObject(), nullptr);
    EXPECT_EQ(liveCount("LyrColorLookupTable"), before);
}

TEST_F(LyqPresetColortableHandlerTest, only_own_presets_are_written) {
    for (const Lyrenum kind : {Lyr::DefaultPreset, Lyr::InstalledPreset}) {
        EXPECT_FALSE(handler->savePresetAs("Rainbow", kind));
        EXPECT_FALSE(handler->getMessage().isEmpty());
    }
    EXPECT_TRUE(handler->savePresetAs("Rainbow")) << "a user's preset may have the name of a built-in one";
    EXPECT_EQ(handler->findPreset("Rainbow"), Lyr::UserPreset);
    EXPECT_EQ(handler->findPreset("Reverse Rainbow"), Lyr::DefaultPreset);
    EXPECT_EQ(handler->findPreset("none"), -1);
}

TEST_F(LyqPresetColortableHandlerTest, texts_of_built_in_presets_are_translated_and_others_are_their_names) {
    const GermanTexts german;
    EXPECT_EQ(handler->getPresetText("Rainbow", Lyr::DefaultPreset), LyrString("Regenbogen"));
    EXPECT_EQ(handler->getPresetText("Reverse Rainbow", Lyr::DefaultPreset), LyrString("Umgekehrter Regenbogen"));
    EXPECT_EQ(handler->getPresetText("Rainbow", Lyr::UserPreset), LyrString("Rainbow"));
    EXPECT_EQ(handler->getPresetText("Rainbow", Lyr::InstalledPreset), LyrString("Rainbow"));
    EXPECT_EQ(handler->getPresetText("Colortable", Lyr::DefaultPreset), LyrString("Colortable")) << "is none of them";
    EXPECT_EQ(handler->getDescription(), LyrString("Farbtabelle"));
    LyrStringList names;
    EXPECT_TRUE(handler->getPresetList(names, Lyr::DefaultPreset));
    EXPECT_THAT(names, ElementsAre(LyrString("Rainbow"), LyrString("Reverse Rainbow"))) << "names are no texts";
    handler->setApplicationObject(nullptr);
    EXPECT_EQ(handler->getPresetText("Rainbow", Lyr::DefaultPreset), LyrString("Rainbow"));
    EXPECT_TRUE(handler->getPresetPixmap("Rainbow", Lyr::DefaultPreset).isNull());
}

TEST_F(LyqPresetColortableHandlerTest, a_clone_that_is_no_object_is_reported_and_destroyed_and_nothing_is_saved) {
    const LyrObjectPtr odd(new Odd);
    handler->setApplicationObject(odd.get());
    EXPECT_FALSE(handler->appToPreset("mine", Lyr::UserPreset));
    EXPECT_EQ(errors.take(), (std::vector<Errors::Entry>{{handler, static_cast<int>(0xF3CB0005)}}));
    EXPECT_EQ(NoObject::made, 1);
    EXPECT_EQ(NoObject::alive, 0);
    EXPECT_TRUE(folder.names().empty());
    EXPECT_EQ(liveCount("LyrPresetColortableProxyObject"), 0);
    handler->setApplicationObject(table.get());
}
