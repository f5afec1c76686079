#include <lys_core/PresetTestTools.h>

#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqPresetStore.h>

#include <gtest/gtest.h>

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

/** Five hundred different names that could go wrong. */
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
    while (names.size() < 500) {
        std::string name;
        for (unsigned i = 0, count = 1 + random() % 8; i < count; ++i) {
            name += PIECES[random() % std::size(PIECES)];
        }
        names.insert(name);
    }
    return names;
}

}  // namespace

TEST(LyqPresetStoreNames, five_hundred_hostile_names_keep_apart_inside_their_folder) {
    Thing::metaClass();
    const TemporaryFolder around;
    const std::string folder = around.file("presets");
    const std::set<std::string> names = hostileNames();
    ASSERT_GE(names.size(), 500u);
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
