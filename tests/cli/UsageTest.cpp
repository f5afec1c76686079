#include "ProgramRun.h"
#include "TableText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using testing::HasSubstr;

/// Three constant sections, as a whole file.
std::string goodTable() {
    const std::string section = table_text::constant(1, 0, 0, 1);
    return table_text::table({0, 1}, {section, section, section});
}

ProgramRun mapAt(const std::string& table) {
    return ProgramRun::of({"map", "--table", table, "--at", "0"});
}

TEST(Usage, help_and_version_go_to_standard_output) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"-h"}, {"map", "--help"}, {"info", "-h"}}) {
        const ProgramRun run = ProgramRun::of(arguments);
        EXPECT_EQ(run.status, 0);
        EXPECT_THAT(run.out, HasSubstr("Usage: colortable"));
        EXPECT_EQ(run.error, "");
    }
    const ProgramRun version = ProgramRun::of({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_THAT(version.out, testing::MatchesRegex("colortable [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Usage, wrong_usage_is_status_2_with_a_message) {
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"nothing"},
                                                         {"map"},
                                                         {"map", "--table"},
                                                         {"map", "--at", "1"},
                                                         {"map", "--table", "Rainbow", "--at"},
                                                         {"map", "--table", "Rainbow", "--at", "1", "more"},
                                                         {"map", "--table", "Rainbow", "--at", "1", "--unknown"},
                                                         {"map", "--table", "Rainbow", "--at", "1", "--at", "2"},
                                                         {"map", "--table", "No Such Preset", "--at", "1"},
                                                         {"map", "--table", "", "--at", "1"},
                                                         {"info"},
                                                         {"info", "Rainbow", "Rainbow"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const ProgramRun run = ProgramRun::of(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(run.out, "") << testing::PrintToString(arguments);
        EXPECT_THAT(run.error, testing::StartsWith("colortable: ")) << testing::PrintToString(arguments);
    }
}

TEST(Usage, an_existing_file_comes_before_a_preset_of_its_name) {
    TestFolder folder;
    folder.write("Rainbow", goodTable());
    ProgramRun::Setup setup;
    setup.folder = folder.path();
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "--at", "-2"}, setup).out, "1 0 0 1\n");
}

TEST(Usage, a_table_file_that_is_cut_off_anywhere_is_refused) {
    TestFolder folder;
    const std::string text = goodTable();
    ASSERT_EQ(mapAt(folder.write("whole.json", text)).status, 0);
    for (std::size_t length = 0; length + 2 < text.size(); length += 1 + text.size() / 24) {
        const ProgramRun run = mapAt(folder.write("cut.json", text.substr(0, length)));
        EXPECT_EQ(run.status, 2) << length;
        EXPECT_EQ(run.out, "") << length;
        EXPECT_THAT(run.error, HasSubstr("cut.json")) << length;
    }
}

TEST(Usage, malformed_table_files_are_refused_with_their_name) {
    const std::string section = table_text::constant(1, 0, 0, 1);
    const auto replaced = [](const std::string& from, const std::string& to) {
        std::string text = goodTable();
        return text.replace(text.find(from), from.size(), to);
    };
    const std::vector<std::string> wrong = {
        "",
        "hello",
        "[]",
        "{}",
        std::string("\0\1\2", 3),
        goodTable() + "x",
        replaced("LyrColorLookupTable", "LyrColorLookupTable::Section"),
        replaced("LyrColorLookupTable", "NoSuchClass"),
        replaced("lyr-object", "other"),
        replaced("[0, 1]", "\"01\""),
        replaced("[0, 1]", "[0, \"x\"]"),
        replaced("[0, 1]", "[0, \"nan\"]"),
        replaced("[0, 1]", "[0, \"inf\"]"),
        replaced("[0, 1]", "[0, 1e39]"),
        replaced("[0, 1]", "[0, 1e400]"),
        replaced("[0, 1]", "[0, null]"),
        replaced("\"Constant\"", "3.5"),
        replaced("\"Constant\"", "{}"),
        replaced("[[0, 1]]", "[[0]]"),
        replaced("LyrColorLookupTable::Section", "LyrColorLookupTable"),
        replaced("[0, 1]", std::string(100000, '[') + std::string(100000, ']')),
        std::string(100000, '['),
    };
    TestFolder folder;
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        const ProgramRun run = mapAt(folder.write("wrong.json", wrong[i]));
        EXPECT_EQ(run.status, 2) << i << ": " << wrong[i].substr(0, 300);
        EXPECT_EQ(run.out, "") << i;
        EXPECT_THAT(run.error, HasSubstr("wrong.json")) << i;
    }
    std::filesystem::create_directory(folder / "folder");
    EXPECT_EQ(mapAt(folder / "folder").status, 2);
    EXPECT_EQ(mapAt("/dev/null").status, 2);
}

TEST(Usage, a_table_of_a_later_version_is_used_with_a_message) {
    TestFolder folder;
    std::string text = goodTable();
    text.replace(text.find("\"version\": 1"), 12, "\"version\": 7");
    const ProgramRun run = mapAt(folder.write("new.json", text));
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, "1 0 0 1\n");
    EXPECT_THAT(run.error, HasSubstr("new.json"));
}

}  // namespace
