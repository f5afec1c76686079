#include <lys_core/PresetTestTools.h>

#include <ToolkitApplication.h>
#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPresetNotifier.h>
#include <lys_core/LyqPresetRegistry.h>

#include <QUndoStack>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace preset_test;
using testing::HasSubstr;

namespace {

class LyqPresetHandlerTest : public testing::Test {
protected:
    LyqPresetHandlerTest() : handler(new ThingHandler(folder.path())), handle(handler) {
        handler->setApplicationObject(thing.thing);
        history.clear();
        QObject::connect(&handler->notifier(), &LyqPresetNotifier::currentPresetChanged, [this] { ++currentChanges; });
        QObject::connect(&handler->notifier(), &LyqPresetNotifier::presetListChanged, [this] { ++listChanges; });
    }
    ~LyqPresetHandlerTest() override { history.clear(); }

    TemporaryFolder folder;
    HeldThing thing{1};
    ThingHandler* handler;
    LyrObjectPtr handle;
    QUndoStack& history = LyqApplication::instance().undoStack();
    int currentChanges = 0;
    int listChanges = 0;
};

}  // namespace

TEST_F(LyqPresetHandlerTest, what_is_saved_is_the_current_preset_and_told) {
    EXPECT_TRUE(handler->getCurrentPreset().isNull());
    ASSERT_TRUE(handler->savePresetAs("a")) << handler->getMessage().utf8();
    EXPECT_EQ(handler->getCurrentPreset(), LyrString("a"));
    EXPECT_EQ(handler->getCurrentPresetKind(), Lyr::UserPreset);
    EXPECT_EQ(currentChanges, 1);
    EXPECT_EQ(listChanges, 1);
    HeldThing other;
    handler->setApplicationObject(other.thing);
    EXPECT_TRUE(handler->getCurrentPreset().isNull()) << "another object has none yet";
}

TEST_F(LyqPresetHandlerTest, applying_is_one_step_that_brings_back_what_writes_do_not_record) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    thing->value.setValue(2);
    thing->note.setValue(3);
    thing->quiet.setValue(4);
    ASSERT_TRUE(handler->applyPreset("a", Lyr::UserPreset));
    EXPECT_EQ(thing->value.stored(), 1);
    EXPECT_EQ(thing->note.stored(), 0);
    EXPECT_EQ(thing->quiet.stored(), 0);
    EXPECT_EQ(history.count(), 1);
    EXPECT_EQ(history.undoText(), QStringLiteral("Apply preset \"a\""));
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(thing->value.stored(), 2);
    EXPECT_EQ(thing->note.stored(), 3);
    EXPECT_EQ(thing->quiet.stored(), 4);
    ASSERT_TRUE(LyqApplication::instance().redo());
    EXPECT_EQ(thing->quiet.stored(), 0);
}

TEST_F(LyqPresetHandlerTest, an_application_that_fails_late_is_taken_back_whole) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    thing->value.setValue(2);
    thing->quiet.setValue(4);
    handler->failAfterCopy = true;
    EXPECT_FALSE(handler->applyPreset("a", Lyr::UserPreset));
    EXPECT_THAT(handler->getMessage().utf8(), HasSubstr("\"a\""));
    EXPECT_EQ(thing->value.stored(), 2);
    EXPECT_EQ(thing->quiet.stored(), 4);
    EXPECT_EQ(history.count(), 0);
}

TEST_F(LyqPresetHandlerTest,
       what_a_file_held_beyond_this_version_comes_back_when_an_application_fails_late_or_is_undone) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    LyrObjectPtr read;
    LyrObjectFile::Report report;
    ASSERT_TRUE(LyrObjectFile::read(R"({"format":"lyr-object","version":1,"class":"PresetTestThing",
        "properties":{"FromLater":[1,2],"900000011":3}})",
                                    read, report))
        << report.message.utf8();
    const auto text = [&] {
        std::string result;
        EXPECT_TRUE(LyrObjectFile::write(*read, result));
        return result;
    };
    ASSERT_THAT(text(), HasSubstr("FromLater"));
    handler->setApplicationObject(read.get());
    handler->failAfterCopy = true;
    EXPECT_FALSE(handler->applyPreset("a", Lyr::UserPreset));
    EXPECT_THAT(text(), HasSubstr("FromLater"));
    handler->failAfterCopy = false;
    ASSERT_TRUE(handler->applyPreset("a", Lyr::UserPreset));
    EXPECT_EQ(text().find("FromLater"), std::string::npos);
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_THAT(text(), HasSubstr("FromLater"));
    handler->setApplicationObject(thing.thing);
    history.clear();
}

TEST_F(LyqPresetHandlerTest, properties_that_a_file_lacks_are_taken_out_of_its_object) {
    HeldThing preset(5);
    ASSERT_TRUE(handler->savePreset(preset.handle, "a", Lyr::UserPreset));
    const std::string file = *folder.names().begin();
    std::string text = folder.read(file);
    const std::string line = "    \"900000013\": 0,\n";
    ASSERT_NE(text.find(line), std::string::npos);
    folder.write(file, text.erase(text.find(line), line.size()));
    LyrObjectFile::Report report;
    const LyrObjectPtr loaded = handler->loadPreset("a", Lyr::UserPreset, &report);
    ASSERT_TRUE(loaded) << report.message.utf8();
    EXPECT_EQ(loaded->getProperty(Thing::NOTE), nullptr);
    EXPECT_TRUE(loaded->getProperty(Thing::VALUE));
    EXPECT_EQ(report.missing, std::vector<Lyrenum>{Thing::NOTE});
    EXPECT_TRUE(handler->loadPreset("a", Lyr::UserPreset, nullptr));
    EXPECT_FALSE(handler->loadPreset("a", Lyr::DefaultPreset, nullptr)) << "that kind has no files";
}

TEST_F(LyqPresetHandlerTest, names_are_searched_among_own_then_installed_then_built_in_presets) {
    TemporaryFolder installed;
    handler->setPresetFolder(Lyr::InstalledPreset, installed.path());
    EXPECT_EQ(handler->findPreset("seven"), Lyr::DefaultPreset);
    ASSERT_TRUE(handler->savePresetAs("seven"));
    std::filesystem::rename(folder.file(*folder.names().begin()), installed.file("seven.json"));
    EXPECT_EQ(handler->findPreset("seven"), Lyr::InstalledPreset);
    ASSERT_TRUE(handler->savePresetAs("seven"));
    EXPECT_EQ(handler->findPreset("seven"), Lyr::UserPreset);
    EXPECT_EQ(handler->findPreset("eight"), -1);
}

TEST_F(LyqPresetHandlerTest, what_is_found_behind_a_folder_that_cannot_be_read_is_found_with_a_message) {
    folder.write("no folder", "");
    EXPECT_EQ(handler->findPreset("seven"), Lyr::DefaultPreset);
    EXPECT_TRUE(handler->getMessage().isNull());
    handler->setPresetFolder(Lyr::UserPreset, folder.file("no folder"));
    EXPECT_EQ(handler->findPreset("seven"), Lyr::DefaultPreset);
    EXPECT_THAT(handler->getMessage().utf8(), HasSubstr("cannot be read"));
}

TEST_F(LyqPresetHandlerTest, the_current_preset_follows_a_new_name_and_is_none_when_it_is_deleted) {
    ASSERT_TRUE(handler->savePresetAs("a"));
    thing->note.setValue(3);
    ASSERT_TRUE(handler->renamePreset("a", "b"));
    EXPECT_EQ(handler->getCurrentPreset(), LyrString("b"));
    EXPECT_TRUE(handler->isCurrentPresetModified());
    ASSERT_TRUE(handler->removePreset("b"));
    EXPECT_TRUE(handler->getCurrentPreset().isNull());
    EXPECT_FALSE(handler->removePreset("b"));
    EXPECT_FALSE(handler->getMessage().isEmpty());
    EXPECT_EQ(listChanges, 3);
}

TEST_F(LyqPresetHandlerTest, it_does_not_keep_its_object_alive) {
    {
        const HeldThing mortal;
        handler->setApplicationObject(mortal.thing);
        EXPECT_EQ(mortal->getRefCount(), 1);
    }
    EXPECT_EQ(handler->getApplicationObject(), nullptr);
    EXPECT_FALSE(handler->applyPreset("seven", Lyr::DefaultPreset));
}

TEST(LyqPresetRegistryOfHandlers, a_kept_handler_is_found_by_its_category_until_it_is_released) {
    LyqPresetRegistry& registry = LyqPresetRegistry::instance();
    auto* handler = new ThingHandler("/nonexistent");
    EXPECT_FALSE(registry.keep(nullptr));
    ASSERT_TRUE(registry.keep(handler));
    EXPECT_TRUE(registry.keep(handler));
    EXPECT_EQ(registry.findHandler(ThingHandler::CATEGORY), handler);
    auto* second = new ThingHandler("/nonexistent");
    const LyrObjectPtr kept(second);
    EXPECT_FALSE(registry.keep(second)) << "the category is taken";
    second->setCategory(-1);
    EXPECT_FALSE(registry.keep(second)) << "it has none";
    HeldThing thing;
    registry.find(ThingHandler::CATEGORY)->setCurrentObject(thing.thing);
    EXPECT_EQ(handler->getApplicationObject(), thing.thing);
    EXPECT_TRUE(registry.release(ThingHandler::CATEGORY));
    EXPECT_FALSE(registry.release(ThingHandler::CATEGORY));
    EXPECT_EQ(registry.findHandler(ThingHandler::CATEGORY), nullptr);
    EXPECT_EQ(registry.create("NoSuchClass", 5, "x"), nullptr);
}
