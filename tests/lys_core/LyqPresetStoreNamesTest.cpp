#include <lys_core/PresetTestTools.h>

#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqPresetStore.h>

#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

using namespace preset_test;

namespace {

const char* const PIECES[] = {"..",
                              "/",
                              "\\",
                              "../",
                              "a",
                              "A",
                              "b",
                              "CON",
                              "nul",
                              "aux",
                              ".",
                              " ",
                              "\n",
                              "\r",
                              "\t",
                              "%",
                              "%2F",
                              "~",
                              ":",
                              "*",
                              "?",
                              "\"",
                              "<",
                              "|",
                              "\x01",
                              "\x7f",
                              "-",
                              "ä",
                              "a\u0308",
                              "Å",
                              "\u212b",
                              "ß",
                              "SS",
                              "ﬁ",
                              "fi",
                              "名前",
                              "🎨",
                              "$HOME",
                              "`id`",
                              ";",
                              "&",
                              ".json",
                              "-0123456789abcdef",
                              ".lyr-save-1-1.tmp"};

/** Each name, and those that differ from it by case or by normal form alone. */
std::set<std::string> withTwins(const std::set<std::string>& names) {
    std::set<std::string> all = names;
    for (const std::string& name : names) {
        const QString text = QString::fromStdString(name);
        for (const QString& twin :
             {text.toUpper(), text.toLower(), text.normalized(QString::NormalizationForm_C),
              text.normalized(QString::NormalizationForm_D), text.normalized(QString::NormalizationForm_KC)}) {
            all.insert(twin.toStdString());
        }
    }
    return all;
}

/** More than five hundred different names that could go wrong. */
std::set<std::string> hostileNames() {
    std::set<std::string> names{"../evil",
                                "/etc/passwd",
                                "/tmp/x",
                                ".",
                                "..",
                                "...",
                                "COM1",
                                "con",
                                "Con",
                                "CON",
                                "NUL",
                                "nul.json",
                                "a/../../b",
                                "~/x",
                                "-rf",
                                "--",
                                " ",
                                "  ",
                                "a ",
                                " a",
                                "a.",
                                ".a",
                                "Rainbow",
                                "rainbow",
                                "RAINBOW",
                                "\u00e9",
                                "e\u0301",
                                "E\u0301",
                                "line\nbreak",
                                std::string(300, 'x'),
                                std::string(300, 'X'),
                                std::string(299, 'x'),
                                std::string(254, '/'),
                                std::string(255, '.'),
                                std::string(1000, '%')};
    for (int length = 170; length < 200; ++length) {
        names.insert(std::string(static_cast<std::size_t>(length), 'y'));
        names.insert(std::string(150, 'z') + std::string(static_cast<std::size_t>(length - 160), '/'));
    }
    std::mt19937 random(20111);
    while (names.size() < 300) {
        std::string name;
        for (unsigned i = 0, count = 1 + random() % 8; i < count; ++i) {
            name += PIECES[random() % std::size(PIECES)];
        }
        names.insert(name);
    }
    return withTwins(names);
}

}  // namespace

TEST(LyqPresetStoreNames, five_hundred_hostile_names_keep_apart_inside_their_folder) {
    Thing::metaClass();
    const TemporaryFolder around;
    const std::string folder = around.file("presets");
    const std::set<std::string> names = hostileNames();
    ASSERT_GE(names.size(), 500u);
    for (const char* twin : {"\u00e9", "\u00c9", "e\u0301", "E\u0301"}) {
        ASSERT_TRUE(names.contains(twin)) << twin;
    }
    LyrString message;
    {
        LyqPresetStore store(folder, true, "PresetTestThing");
        float value = 0;
        for (const std::string& name : names) {
            HeldThing thing(value++);
            ASSERT_TRUE(store.save(*thing, name, message)) << name << ": " << message.utf8();
        }
    }
    EXPECT_EQ(around.names(), std::set<std::string>{"presets"});
    LyqPresetStore store(folder, true, "PresetTestThing");
    std::set<std::string> listed;
    std::set<std::string> lowerCaseFiles;
    for (const LyqPresetStore::Entry& entry : store.list()) {
        listed.insert(entry.name.utf8());
        EXPECT_EQ(std::filesystem::path(entry.path).parent_path(), folder);
        std::string file = std::filesystem::path(entry.path).filename().string();
        EXPECT_LE(file.size(), 255u);
        EXPECT_NE(file[0], '.');
        for (char& c : file) {
            EXPECT_TRUE(c >= ' ' && c < 127 && c != ':' && c != '*' && c != '"' && c != '|') << file;
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        lowerCaseFiles.insert(file);
    }
    EXPECT_EQ(listed, names);
    EXPECT_EQ(lowerCaseFiles.size(), names.size()) << "on a file system without case as well";
    float value = 0;
    for (const std::string& name : names) {
        LyrObjectFile::Report report;
        const LyrObjectPtr object = store.load(name, report, Lyr::TransientScope);
        ASSERT_TRUE(object) << name << ": " << report.message.utf8();
        EXPECT_EQ(static_cast<Thing*>(object.get())->value.stored(), value++) << name;
    }
    for (const std::string& name : names) {
        EXPECT_TRUE(store.remove(name, message)) << name << ": " << message.utf8();
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST(LyqPresetStoreNames, links_in_the_places_of_hostile_names_lead_nothing_out_of_the_folder) {
    Thing::metaClass();
    const TemporaryFolder around;
    const std::string folder = around.file("presets");
    const std::set<std::string> names = hostileNames();
    around.write("target.json", "of somebody else");
    LyrString message;
    LyqPresetStore store(folder, true, "PresetTestThing");
    for (const std::string& name : names) {
        HeldThing thing(1);
        ASSERT_TRUE(store.save(*thing, name, message)) << name << ": " << message.utf8();
    }
    bool isDangling = false;
    for (const LyqPresetStore::Entry& entry : store.list()) {
        std::filesystem::remove(entry.path);
        std::filesystem::create_symlink(isDangling ? "../new.json" : "../target.json", entry.path);
        isDangling = !isDangling;
    }
    for (const std::string& name : names) {
        HeldThing thing(2);
        LyrObjectFile::Report report;
        EXPECT_FALSE(store.save(*thing, name, message)) << name;
        EXPECT_FALSE(message.isEmpty()) << name;
        EXPECT_FALSE(store.load(name, report, Lyr::TransientScope)) << name;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        EXPECT_TRUE(entry.is_symlink()) << entry.path();
    }
    EXPECT_EQ(around.names(), (std::set<std::string>{"presets", "target.json"}));
    EXPECT_EQ(around.read("target.json"), "of somebody else");
}

TEST(LyqPresetStoreNames, names_with_a_zero_byte_make_no_file_by_any_way_in) {
    Thing::metaClass();
    const TemporaryFolder folder;
    LyqPresetStore store(folder.path(), true, "PresetTestThing");
    LyrString message;
    HeldThing thing(1);
    ASSERT_TRUE(store.save(*thing, "a", message));
    const std::set<std::string> before = folder.names();
    for (const std::string_view name : {std::string_view("\0", 1), std::string_view("a\0", 2),
                                        std::string_view("a\0b", 3), std::string_view("../a\0.json", 10)}) {
        EXPECT_FALSE(store.save(*thing, LyrString(name), message));
        EXPECT_FALSE(store.rename("a", LyrString(name), message));
        EXPECT_FALSE(message.isEmpty());
        EXPECT_FALSE(store.contains(LyrString(name)));
    }
    std::string text = folder.read(*before.begin());
    text.replace(text.find("\"NameTemplate\": \"a\""), 19, "\"NameTemplate\": \"a\\u0000b\"");
    const TemporaryFolder other;
    other.write("in.json", text);
    LyrString name;
    EXPECT_FALSE(store.importFile(other.file("in.json"), true, name, message));
    EXPECT_FALSE(message.isEmpty());
    EXPECT_EQ(folder.names(), before);
}
