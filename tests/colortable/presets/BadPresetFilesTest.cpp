#include "PresetTools.h"

#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace presets;
using testing::HasSubstr;

namespace {

class BadPresetFiles : public PresetTest {
protected:
    BadPresetFiles() {
        EXPECT_TRUE(handler->savePresetAs("mine"));
        file = *folder.names().begin();
        text = folder.read(file);
        makeUnusual(*table);
        before = textOf(*table);
        LyqApplication::instance().undoStack().clear();
    }
    /** The preset cannot be applied: a message, the table and the file as they were, no undo step. The mode of the next
     * save follows a file that was read, even if its table could not be copied. */
    void expectRefused(const std::string& content, bool isRead = false) {
        folder.write(file, content);
        handler->setAbsolutePreset(true);
        EXPECT_FALSE(handler->applyPreset("mine", Lyr::UserPreset));
        EXPECT_FALSE(handler->getMessage().isEmpty());
        EXPECT_EQ(handler->isAbsolutePreset(), !isRead) << content;
        EXPECT_EQ(textOf(*table), before);
        EXPECT_EQ(folder.read(file), content);
        EXPECT_EQ(folder.names(), std::set<std::string>{file});
        EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
        errors.take();
    }
    std::string replaced(const std::string& what, const std::string& with) const {
        std::string result = text;
        const auto at = result.find(what);
        EXPECT_NE(at, std::string::npos) << what;
        return result.replace(at, what.size(), with);
    }

    std::string file;
    std::string text;
    std::string before;
};

}  // namespace

TEST_F(BadPresetFiles, every_cut_of_a_preset_is_refused) {
    for (std::size_t length = 0; length + 2 < text.size(); length += 13) {
        expectRefused(text.substr(0, length));
    }
}

TEST_F(BadPresetFiles, other_classes_are_refused_at_the_top_for_the_table_and_among_the_sections) {
    expectRefused(replaced("LyrPresetColortableProxyObject", "LyrColorLookupTable"));
    expectRefused(replaced("\"LyrColorLookupTable\"", "\"LyrColorLookupTable::Section\""), true);
    expectRefused(replaced("\"LyrColorLookupTable::Section\"", "\"LyrColorLookupTableRenderSettings\""), true);
    expectRefused(replaced("\"LyrColorLookupTable::Section\"", "\"LyqPresetColortableHandler\""));
    expectRefused(replaced("\"LyrColorLookupTable::Section\"", "\"LyqColorLookupTableAnnotation\""));
    expectRefused(replaced("\"LyrColorLookupTable::Section\"", "\"LyqSliceWidget\""));
}

TEST_F(BadPresetFiles, values_of_another_type_are_refused) {
    expectRefused(replaced("[-1, 1]", "[-1, \"one\"]"));
    expectRefused(replaced("[-1, 1]", "[-1, 1e999]"));
    expectRefused(replaced("\"AbsoluteMode\": false", "\"AbsoluteMode\": 3"));
}

TEST_F(BadPresetFiles, a_preset_without_a_table_is_a_failed_copy_that_is_reported) {
    const auto begin = text.find("    \"ColorLookupTable\"");
    const auto end = text.find("\n    \"NameTemplate\"", begin) + 1;
    std::string without = text;
    without.erase(begin, end - begin);
    for (const std::string& content :
         {without, replaced(text.substr(begin, end - begin), "    \"ColorLookupTable\": null,\n")}) {
        folder.write(file, content);
        handler->setAbsolutePreset(true);
        EXPECT_FALSE(handler->presetToApp("mine", Lyr::UserPreset));
        EXPECT_EQ(errors.take(), (std::vector<Errors::Entry>{{handler, static_cast<int>(0xF3CB0005)}}));
        EXPECT_FALSE(handler->isAbsolutePreset()) << "what follows a copy happens after one that failed too";
        EXPECT_EQ(textOf(*table), before);
    }
}

TEST_F(BadPresetFiles, the_hook_is_called_after_a_failed_copy_too) {
    LyrObjectPtr handle(new StretchingHandler(folder.path()));
    auto& stretching = static_cast<StretchingHandler&>(*handle);
    stretching.setApplicationObject(table.get());
    const auto begin = text.find("    \"ColorLookupTable\"");
    const auto end = text.find("\n    \"NameTemplate\"", begin) + 1;
    folder.write(file, replaced(text.substr(begin, end - begin), "    \"ColorLookupTable\": null,\n"));
    EXPECT_FALSE(stretching.presetToApp("mine", Lyr::UserPreset));
    EXPECT_EQ(stretching.adjusted.size(), 1u);
    errors.take();
}

TEST_F(BadPresetFiles, a_later_version_is_applied_as_far_as_understood_with_a_message_and_never_overwritten) {
    std::string later = replaced("\"version\": 1", "\"version\": 7");
    const auto at = later.find("\"AutoLabel\": true");
    later.replace(at, 17, "\"AutoLabel\": \"by a new rule\"");
    folder.write(file, later);
    ASSERT_TRUE(handler->applyPreset("mine", Lyr::UserPreset)) << handler->getMessage().utf8();
    EXPECT_THAT(handler->getMessage().utf8(), HasSubstr("newer version"));
    EXPECT_THAT(model::listOf<float>(*table, Lyr::PositionList), testing::ElementsAre(-1, 1));
    lyrSetValue(table.get(), Lyr::AutoScale, Lyrenum(0));
    EXPECT_FALSE(handler->savePresetAs("mine"));
    EXPECT_TRUE(handler->isCurrentPresetModified());
    EXPECT_EQ(folder.read(file), later);
    LyqApplication::instance().undoStack().clear();
}

TEST_F(BadPresetFiles, the_others_are_listed_beside_a_broken_one) {
    handler->savePresetAs("other");
    folder.write(file, "");
    LyrStringList list;
    EXPECT_TRUE(handler->listPresets(list, Lyr::UserPreset));
    EXPECT_THAT(list, testing::ElementsAre(LyrString("mine"), LyrString("other")));
    EXPECT_TRUE(handler->applyPreset("other", Lyr::UserPreset));
    LyqApplication::instance().undoStack().clear();
}
