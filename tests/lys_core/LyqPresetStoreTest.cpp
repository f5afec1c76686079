#include <lys_core/PresetTestTools.h>

#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqPresetStore.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

using namespace preset_test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class LyqPresetStoreTest : public testing::Test {
protected:
    LyqPresetStoreTest() { Thing::metaClass(); }

    bool save(const LyrString& name, float value) {
        HeldThing thing(value);
        return store.save(*thing, name, message);
    }
    /** The value of a preset, -1 if it cannot be loaded. */
    float valueOf(const LyrString& name) {
        const LyrObjectPtr object = store.load(name, report, Lyr::TransientScope);
        return object ? static_cast<Thing*>(object.get())->value.stored() : -1.0f;
    }
    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (const LyqPresetStore::Entry& entry : store.list()) {
            result.emplace_back(entry.name.utf8());
        }
        return result;
    }
    std::string problemOf(const LyrString& name) {
        for (const LyqPresetStore::Entry& entry : store.list()) {
            if (entry.name == name) {
                return entry.problem.utf8();
            }
        }
        return "(not listed)";
    }
    std::string pathOf(const LyrString& name) {
        for (const LyqPresetStore::Entry& entry : store.list()) {
            if (entry.name == name) {
                return entry.path;
            }
        }
        return {};
    }
    std::string fileOf(const LyrString& name) {
        const std::string path = pathOf(name);
        return path.substr(path.rfind('/') + 1);
    }

    TemporaryFolder folder;
    LyqPresetStore store{folder.path(), true, "PresetTestThing"};
    LyrString message;
    LyrObjectFile::Report report;
};

}  // namespace

TEST_F(LyqPresetStoreTest, what_was_saved_is_listed_by_name_and_loads_again) {
    EXPECT_TRUE(names().empty());
    ASSERT_TRUE(save("b", 2.5f)) << message.utf8();
    ASSERT_TRUE(save("a", 1.5f)) << message.utf8();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    EXPECT_EQ(valueOf("a"), 1.5f);
    EXPECT_EQ(valueOf("b"), 2.5f);
    EXPECT_EQ(folder.names().size(), 2u);
}

TEST_F(LyqPresetStoreTest, a_preset_carries_its_name_in_its_file) {
    ASSERT_TRUE(save("My preset", 1));
    EXPECT_THAT(folder.read(fileOf("My preset")), HasSubstr("\"NameTemplate\": \"My preset\""));
    std::filesystem::rename(pathOf("My preset"), folder.file("x.json"));
    EXPECT_EQ(valueOf("My preset"), 1);
    ASSERT_TRUE(save("My preset", 2)) << "into the file that has the name";
    EXPECT_EQ(folder.names(), std::set<std::string>{"x.json"});
    EXPECT_EQ(valueOf("My preset"), 2);
}

TEST_F(LyqPresetStoreTest, saving_again_replaces_the_preset_of_that_name_alone) {
    ASSERT_TRUE(save("a", 1) && save("A", 2) && save("a", 3));
    EXPECT_EQ(valueOf("a"), 3);
    EXPECT_EQ(valueOf("A"), 2);
}

TEST_F(LyqPresetStoreTest, the_folder_is_made_when_it_is_needed) {
    LyqPresetStore deep(folder.file("one/two"), true, "PresetTestThing");
    EXPECT_TRUE(deep.list().empty());
    EXPECT_TRUE(folder.names().empty());
    HeldThing thing(1);
    EXPECT_TRUE(deep.save(*thing, "a", message)) << message.utf8();
    EXPECT_EQ(deep.list().size(), 1u);
}

TEST_F(LyqPresetStoreTest, names_that_no_file_can_carry_are_refused_with_the_reason) {
    EXPECT_FALSE(save("", 1));
    EXPECT_THAT(message.utf8(), HasSubstr("needs a name"));
    EXPECT_FALSE(save(LyrString(std::string_view("a\0b", 3)), 1));
    EXPECT_THAT(message.utf8(), HasSubstr("character 0"));
    EXPECT_FALSE(save("\xff\xfe", 1));
    EXPECT_THAT(message.utf8(), HasSubstr("UTF-8"));
    EXPECT_FALSE(save("\xef\xbb\xbfMark", 1));
    EXPECT_THAT(message.utf8(), HasSubstr("U+FEFF"));
    EXPECT_TRUE(save("M\xef\xbb\xbf.", 1)) << message.utf8();
    EXPECT_TRUE(store.remove("M\xef\xbb\xbf.", message)) << message.utf8();
    EXPECT_FALSE(save(LyrString(std::string(4097, 'x')), 1));
    EXPECT_THAT(message.utf8(), HasSubstr("4096"));
    EXPECT_TRUE(save(LyrString(std::string(4096, 'x')), 1)) << message.utf8();
    EXPECT_EQ(folder.names().size(), 1u);
}

TEST_F(LyqPresetStoreTest, a_renamed_preset_keeps_its_content_and_its_unknown_properties) {
    ASSERT_TRUE(save("a", 1.25f));
    std::string text = folder.read(fileOf("a"));
    text.insert(text.find("\"NameTemplate\""), "\"FromLater\": [1, 2],\n    ");
    folder.write(fileOf("a"), text);
    ASSERT_TRUE(store.rename("a", "b/c", message)) << message.utf8();
    EXPECT_THAT(names(), ElementsAre("b/c"));
    EXPECT_EQ(valueOf("b/c"), 1.25f);
    EXPECT_THAT(folder.read(fileOf("b/c")), HasSubstr("\"FromLater\": [1, 2]"));
}

TEST_F(LyqPresetStoreTest, renaming_to_a_name_that_is_taken_or_of_a_preset_that_is_not_there_changes_nothing) {
    ASSERT_TRUE(save("a", 1) && save("b", 2));
    EXPECT_FALSE(store.rename("a", "b", message));
    EXPECT_THAT(message.utf8(), HasSubstr("\"b\""));
    EXPECT_FALSE(store.rename("c", "d", message));
    EXPECT_THAT(message.utf8(), HasSubstr("no preset \"c\""));
    EXPECT_FALSE(store.rename("a", "", message));
    EXPECT_TRUE(store.rename("a", "a", message));
    EXPECT_EQ(valueOf("a"), 1);
    EXPECT_EQ(valueOf("b"), 2);
}

TEST_F(LyqPresetStoreTest, a_removed_preset_is_gone_and_the_others_stay) {
    ASSERT_TRUE(save("a", 1) && save("b", 2));
    EXPECT_TRUE(store.remove("a", message));
    EXPECT_FALSE(store.remove("a", message));
    EXPECT_THAT(message.utf8(), HasSubstr("no preset \"a\""));
    EXPECT_THAT(names(), ElementsAre("b"));
}

TEST_F(LyqPresetStoreTest, exported_files_are_copies_and_can_be_imported_elsewhere) {
    TemporaryFolder other;
    LyqPresetStore second(other.path(), true, "PresetTestThing");
    ASSERT_TRUE(save("a b", 4));
    ASSERT_TRUE(store.exportFile("a b", folder.file("copy.txt"), message)) << message.utf8();
    EXPECT_EQ(folder.read("copy.txt"), folder.read(fileOf("a b")));
    LyrString name;
    ASSERT_TRUE(second.importFile(folder.file("copy.txt"), false, name, message)) << message.utf8();
    EXPECT_EQ(name, LyrString("a b"));
    EXPECT_EQ(second.list().front().name, LyrString("a b"));
    EXPECT_FALSE(second.importFile(folder.file("copy.txt"), false, name, message)) << "the name is taken";
    EXPECT_TRUE(second.importFile(folder.file("copy.txt"), true, name, message)) << message.utf8();
    EXPECT_EQ(other.names().size(), 1u);
    EXPECT_FALSE(store.exportFile("none", folder.file("x"), message));
    EXPECT_FALSE(std::filesystem::exists(folder.file("x")));
}

TEST_F(LyqPresetStoreTest, files_that_are_no_presets_are_not_imported) {
    TemporaryFolder other;
    other.write("empty.json", "");
    other.write("other.json", R"({"format":"lyr-object","version":1,"class":"LyrObject","properties":{}})");
    LyrString name;
    for (const char* file : {"empty.json", "other.json", "none.json", "."}) {
        EXPECT_FALSE(store.importFile(other.file(file), false, name, message)) << file;
        EXPECT_THAT(message.utf8(), HasSubstr(other.path())) << file;
        EXPECT_TRUE(name.isNull());
    }
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(LyqPresetStoreTest, a_broken_file_is_listed_with_its_problem_stays_as_it_is_and_hides_nobody) {
    ASSERT_TRUE(save("good", 1) && save("cut", 2) && save("empty", 3));
    const std::string cut = folder.read(fileOf("cut"));
    const std::string cutFile = fileOf("cut");
    const std::string emptyFile = fileOf("empty");
    folder.write(cutFile, cut.substr(0, cut.size() / 2));
    folder.write(emptyFile, "");
    EXPECT_THAT(names(), ElementsAre("cut", "empty", "good"));
    for (const char* name : {"cut", "empty"}) {
        EXPECT_THAT(problemOf(name), HasSubstr("cut off or damaged"));
        EXPECT_EQ(valueOf(name), -1);
        EXPECT_THAT(report.message.utf8(), HasSubstr(folder.path()));
    }
    EXPECT_EQ(problemOf("good"), "");
    EXPECT_EQ(folder.read(cutFile), cut.substr(0, cut.size() / 2));
    EXPECT_EQ(folder.read(emptyFile), "");
    EXPECT_FALSE(store.rename("cut", "x", message));
    EXPECT_TRUE(save("cut", 5)) << "saving under its name is a wish to replace it";
    EXPECT_EQ(valueOf("cut"), 5);
    EXPECT_TRUE(store.remove("empty", message));
}

TEST_F(LyqPresetStoreTest, a_file_of_another_class_is_not_listed_and_keeps_its_place) {
    ASSERT_TRUE(save("a", 1));
    const std::string file = fileOf("a");
    folder.write(file, R"({"format":"lyr-object","version":1,"class":"LyrObject","properties":{}})");
    EXPECT_TRUE(names().empty());
    EXPECT_EQ(valueOf("a"), -1);
    EXPECT_FALSE(save("a", 2));
    EXPECT_THAT(message.utf8(), HasSubstr(file));
    EXPECT_THAT(folder.read(file), HasSubstr("LyrObject"));
}

TEST_F(LyqPresetStoreTest, a_preset_of_a_later_version_loads_with_a_message_and_is_never_overwritten) {
    ASSERT_TRUE(save("a", 1.5f));
    std::string text = folder.read(fileOf("a"));
    text.replace(text.find("\"version\": 1"), 12, "\"version\": 2");
    folder.write(fileOf("a"), text);
    EXPECT_TRUE(store.list().front().isNewer);
    EXPECT_EQ(valueOf("a"), 1.5f);
    EXPECT_THAT(report.message.utf8(), HasSubstr("newer version"));
    EXPECT_FALSE(save("a", 2));
    EXPECT_FALSE(store.rename("a", "b", message));
    LyrString name;
    TemporaryFolder other;
    ASSERT_TRUE(store.exportFile("a", other.file("a.json"), message)) << message.utf8();
    EXPECT_EQ(other.read("a.json"), text);
    EXPECT_FALSE(store.importFile(other.file("a.json"), true, name, message));
    EXPECT_EQ(folder.read(fileOf("a")), text);
    EXPECT_EQ(folder.names().size(), 1u);
}

TEST_F(LyqPresetStoreTest, links_are_neither_read_nor_written_through) {
    TemporaryFolder outside;
    ASSERT_TRUE(save("a", 1));
    const std::string path = pathOf("a");
    std::filesystem::rename(path, outside.file("target.json"));
    const std::string before = outside.read("target.json");
    std::filesystem::create_symlink(outside.file("target.json"), path);
    EXPECT_THAT(problemOf("a"), HasSubstr("link"));
    EXPECT_EQ(valueOf("a"), -1);
    EXPECT_FALSE(save("a", 2));
    EXPECT_THAT(message.utf8(), HasSubstr("link"));
    EXPECT_EQ(outside.read("target.json"), before);
    EXPECT_TRUE(store.remove("a", message)) << message.utf8();
    EXPECT_EQ(outside.read("target.json"), before) << "the link goes, not what it leads to";
    std::filesystem::create_symlink(outside.file("missing.json"), path);
    EXPECT_FALSE(save("a", 2));
    EXPECT_EQ(outside.names(), std::set<std::string>{"target.json"});
}

TEST_F(LyqPresetStoreTest, folders_and_pipes_in_the_place_of_presets_are_told_and_left_alone) {
    ASSERT_TRUE(save("good", 1));
    std::filesystem::create_directory(folder.file("folder.json"));
    ASSERT_EQ(::mkfifo(folder.file("pipe.json").c_str(), 0600), 0);
    EXPECT_THAT(names(), ElementsAre("folder", "good", "pipe"));
    EXPECT_THAT(problemOf("folder"), HasSubstr("no ordinary file"));
    EXPECT_THAT(problemOf("pipe"), HasSubstr("no ordinary file"));
    EXPECT_FALSE(save("pipe", 1));
    EXPECT_EQ(valueOf("pipe"), -1);
    EXPECT_EQ(valueOf("good"), 1);
}

TEST_F(LyqPresetStoreTest, a_file_without_a_name_is_named_after_itself) {
    ASSERT_TRUE(save("a", 3));
    std::string text = folder.read(fileOf("a"));
    const auto at = text.find(",\n    \"NameTemplate\"");
    text.erase(at, text.find('\n', at + 2) - at);
    TemporaryFolder other;
    other.write("brought along.json", text);
    LyqPresetStore second(other.path(), true, "PresetTestThing");
    ASSERT_EQ(second.list().size(), 1u);
    EXPECT_EQ(second.list().front().name, LyrString("brought along"));
    EXPECT_TRUE(second.load("brought along", report, Lyr::TransientScope));
}

TEST_F(LyqPresetStoreTest, a_store_that_is_not_writable_changes_nothing) {
    ASSERT_TRUE(save("a", 1));
    folder.write(".lyr-save-1-1.tmp", "debris");
    LyqPresetStore readOnly(folder.path(), false, "PresetTestThing");
    HeldThing thing(2);
    LyrString name;
    EXPECT_FALSE(readOnly.save(*thing, "b", message));
    EXPECT_THAT(message.utf8(), HasSubstr("come with the program"));
    EXPECT_FALSE(readOnly.rename("a", "b", message) || readOnly.remove("a", message));
    EXPECT_FALSE(readOnly.importFile(pathOf("a"), true, name, message));
    EXPECT_EQ(folder.names().size(), 2u) << "not even swept";
}

TEST_F(LyqPresetStoreTest, what_killed_savers_left_is_swept_at_the_start_and_never_listed) {
    folder.write(".lyr-save-1-1.tmp", "debris");
    EXPECT_TRUE(names().empty());
    const LyqPresetStore next(folder.path(), true, "PresetTestThing");
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(LyqPresetStoreTest, a_folder_that_cannot_be_made_gives_a_message) {
    folder.write("file", "");
    LyqPresetStore inFile(folder.file("file/presets"), true, "PresetTestThing");
    HeldThing thing(2);
    EXPECT_FALSE(inFile.save(*thing, "b", message));
    EXPECT_THAT(message.utf8(), HasSubstr("cannot be made"));
}

TEST_F(LyqPresetStoreTest, of_two_files_with_one_name_the_one_that_a_store_would_make_counts) {
    ASSERT_TRUE(save("x", 3));
    std::string other = folder.read(fileOf("x"));
    other.replace(other.find("\"900000011\": 3"), 14, "\"900000011\": 4");
    folder.write("0.json", other);
    EXPECT_EQ(valueOf("x"), 3);
    EXPECT_EQ(fileOf("x").substr(0, 2), "x-");
    ASSERT_TRUE(store.remove("x", message)) << message.utf8();
    EXPECT_EQ(valueOf("x"), 4) << "the other one comes to light";
    EXPECT_EQ(fileOf("x"), "0.json");
}

TEST_F(LyqPresetStoreTest, a_name_in_a_file_of_any_name_is_found_as_soon_as_it_is_there) {
    ASSERT_TRUE(save("a", 1));
    const std::string text = folder.read(fileOf("a"));
    const auto named = [&](const std::string& name) {
        std::string result = text;
        return result.replace(result.find("\"NameTemplate\": \"a\""), 19, "\"NameTemplate\": \"" + name + '"');
    };
    EXPECT_FALSE(store.contains("b"));
    folder.write("1.json", named("b"));
    EXPECT_TRUE(store.contains("b"));
    folder.write("1.json", named("c"));
    EXPECT_FALSE(store.contains("b"));
    EXPECT_TRUE(store.contains("c"));
    // In the place of a file that a store made.
    folder.write("2.json", named("d"));
    std::filesystem::rename(folder.file("2.json"), pathOf("a"));
    EXPECT_FALSE(store.contains("a"));
    EXPECT_TRUE(store.contains("d"));
    std::filesystem::remove(folder.file("1.json"));
    EXPECT_FALSE(store.contains("c"));
}

TEST_F(LyqPresetStoreTest, a_file_that_another_program_replaced_is_read_anew) {
    ASSERT_TRUE(save("a", 1));
    EXPECT_EQ(valueOf("a"), 1);
    LyqPresetStore second(folder.path(), true, "PresetTestThing");
    HeldThing thing(2);
    ASSERT_TRUE(second.save(*thing, "a", message) && second.rename("a", "b", message));
    EXPECT_THAT(names(), ElementsAre("b"));
    EXPECT_EQ(valueOf("b"), 2);
}

TEST_F(LyqPresetStoreTest, a_renamed_preset_still_lacks_what_its_file_lacked) {
    ASSERT_TRUE(save("a", 1));
    std::string text = folder.read(fileOf("a"));
    const std::string line = "    \"900000013\": 0,\n";
    ASSERT_NE(text.find(line), std::string::npos);
    folder.write(fileOf("a"), text.erase(text.find(line), line.size()));
    ASSERT_TRUE(store.rename("a", "b", message)) << message.utf8();
    EXPECT_EQ(folder.read(fileOf("b")).find("900000013"), std::string::npos);
    EXPECT_EQ(valueOf("b"), 1);
    EXPECT_EQ(report.missing, std::vector<Lyrenum>{Thing::NOTE});
}

TEST_F(LyqPresetStoreTest, of_two_files_with_one_name_the_one_that_can_be_used_counts) {
    ASSERT_TRUE(save("x", 3));
    std::filesystem::rename(pathOf("x"), folder.file("z.json"));
    folder.write("x.json", "{");
    EXPECT_THAT(names(), ElementsAre("x"));
    EXPECT_EQ(problemOf("x"), "");
    EXPECT_EQ(valueOf("x"), 3);
}

TEST_F(LyqPresetStoreTest, neither_import_nor_export_replaces_a_file_of_a_newer_version_even_if_it_is_cut_off) {
    TemporaryFolder other;
    ASSERT_TRUE(save("a", 1));
    ASSERT_TRUE(store.exportFile("a", other.file("a.json"), message)) << message.utf8();
    std::string newer = folder.read(fileOf("a"));
    newer.replace(newer.find("\"version\": 1"), 12, "\"version\": 2");
    other.write("newer.json", newer);
    EXPECT_FALSE(store.exportFile("a", other.file("newer.json"), message));
    EXPECT_THAT(message.utf8(), HasSubstr("newer version"));
    EXPECT_EQ(other.read("newer.json"), newer);

    // Cut off behind its version it is listed by its file's name, and still no import takes its place.
    const std::string cut = newer.substr(0, newer.find("\"properties\""));
    folder.write(fileOf("a"), cut);
    LyrString name;
    EXPECT_FALSE(store.importFile(other.file("a.json"), true, name, message));
    EXPECT_THAT(message.utf8(), HasSubstr("newer version"));
    EXPECT_EQ(folder.read(fileOf("a")), cut);
}

TEST_F(LyqPresetStoreTest, a_name_that_is_taken_is_told_from_other_failures_and_only_replaced_on_request) {
    HeldThing thing(2);
    ASSERT_TRUE(store.save(*thing, "a", message, false)) << message.utf8();
    thing->value.setValue(3);
    EXPECT_FALSE(store.save(*thing, "a", message, false));
    EXPECT_TRUE(store.isNameTaken());
    EXPECT_EQ(valueOf("a"), 2);
    EXPECT_FALSE(store.save(*thing, "", message, false));
    EXPECT_FALSE(store.isNameTaken());
    LyrString name;
    const std::string path = pathOf("a");
    EXPECT_FALSE(store.checkImport(path, false, name, message));
    EXPECT_TRUE(store.isNameTaken());
    EXPECT_TRUE(store.checkImport(path, true, name, message)) << message.utf8();
    EXPECT_TRUE(store.save(*thing, "a", message)) << message.utf8();
    EXPECT_EQ(valueOf("a"), 3);
}

TEST_F(LyqPresetStoreTest, a_file_of_a_newer_version_is_taken_in_with_a_message) {
    TemporaryFolder other;
    ASSERT_TRUE(save("a", 1));
    std::string newer = folder.read(fileOf("a"));
    newer.replace(newer.find("\"version\": 1"), 12, "\"version\": 2");
    other.write("newer.json", newer);
    ASSERT_TRUE(store.remove("a", message));
    LyrString name;
    ASSERT_TRUE(store.importFile(other.file("newer.json"), false, name, message)) << message.utf8();
    EXPECT_THAT(message.utf8(), HasSubstr("newer version"));
}

TEST_F(LyqPresetStoreTest, a_file_without_a_name_is_taken_in_under_the_name_that_is_returned) {
    std::string name21;
    for (int i = 0; i < 21; ++i) {
        name21 += "\u540d";
    }
    TemporaryFolder other;
    const std::string head = R"({"note":"\"properties\": {","format":"lyr-object","version":)";
    const std::string middle = R"(,"class":"PresetTestThing", "properties" : {)";
    const std::string tail = R"("FromLater": {"NameTemplate": "x"}, "900000011":7} })";
    for (const std::string& stem : {std::string("plain"), name21}) {
        for (const std::string version : {"1", "2"}) {
            const std::string wanted = stem + version;
            other.write(wanted + ".json", head + version + middle + tail);
            LyrString name;
            ASSERT_TRUE(store.importFile(other.file(wanted + ".json"), false, name, message)) << message.utf8();
            EXPECT_EQ(name, LyrString(wanted));
            ASSERT_TRUE(store.contains(name)) << wanted;
            EXPECT_EQ(folder.read(fileOf(name)),
                      head + version + middle + "\n    \"NameTemplate\": \"" + wanted + "\"," + tail);
            EXPECT_FALSE(store.importFile(other.file(wanted + ".json"), false, name, message));
            EXPECT_TRUE(store.isNameTaken());
        }
    }
}

TEST_F(LyqPresetStoreTest, an_empty_name_in_a_file_is_replaced_and_an_empty_list_of_properties_gets_one) {
    TemporaryFolder other;
    const std::string head = R"({"format":"lyr-object","version":1,"class":"PresetTestThing","properties":)";
    other.write("a.json", head + R"({"NameTemplate": "" , "900000011": 7}})");
    other.write("b.json", head + "{ }}");
    LyrString name;
    ASSERT_TRUE(store.importFile(other.file("a.json"), false, name, message)) << message.utf8();
    ASSERT_TRUE(store.importFile(other.file("b.json"), false, name, message)) << message.utf8();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    EXPECT_EQ(folder.read(fileOf("a")), head + R"({"NameTemplate": "a", "900000011": 7}})");
    EXPECT_EQ(folder.read(fileOf("b")), head + "{\n    \"NameTemplate\": \"b\" }}");
}
