#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// Runs the program with a folder of its own for the user's data.
class Presets : public testing::Test {
protected:
    ProgramRun run(const std::vector<std::string>& arguments) {
        ProgramRun::Setup setup;
        setup.environment["XDG_DATA_HOME"] = data.path();
        return ProgramRun::of(arguments, setup);
    }
    std::string folder() const { return data / "lys_colortable/presets"; }
    /// The only file of the user's presets.
    std::string onlyFile() const {
        const std::filesystem::directory_iterator files(folder());
        return files == end(files) ? "" : files->path().string();
    }
    std::string table(const char* from, const char* to) {
        const std::string path = data / (std::string("t") + from + ".json");
        EXPECT_EQ(run({"create", "smooth", "--from", from, "--to", to, "--type", "HueCycle", "-o", path}).status, 0);
        return path;
    }

    TestFolder data;
};

}  // namespace

TEST_F(Presets, the_list_has_installed_and_built_in_presets_and_then_ones_own_first) {
    const ProgramRun first = run({"presets", "list"});
    EXPECT_EQ(first.status, 0) << first.error;
    EXPECT_THAT(first.out, AllOf(HasSubstr("installed  Uniform Heat\n"), HasSubstr("built-in   Rainbow\n"),
                                 HasSubstr("built-in   Reverse Rainbow\n"), Not(HasSubstr("user "))));
    EXPECT_TRUE(data.names().empty()) << "listing makes no folders";
    ASSERT_EQ(run({"presets", "save", "mine", "--table", "Rainbow"}).status, 0);
    EXPECT_EQ(run({"presets", "list"}).out, "user       mine\n" + first.out);
    EXPECT_EQ(run({"presets", "list", "--kind", "built-in"}).out, "built-in   Rainbow\nbuilt-in   Reverse Rainbow\n");
    EXPECT_THAT(run({"presets", "list", "--json", "--kind", "user"}).out,
                AllOf(HasSubstr("\"name\": \"mine\""), HasSubstr("\"kind\": \"user\"")));
    EXPECT_EQ(run({"presets", "list", "--kind", "other"}).status, 2);
}

TEST_F(Presets, a_saved_table_is_found_by_name_everywhere_and_comes_back_to_the_bit) {
    const std::string file = table("-2", "6");
    ASSERT_EQ(run({"presets", "save", "a/b", "--table", file}).status, 0);
    EXPECT_EQ(run({"map", "--table", "a/b", "--at", "-3,0.1,5"}).out,
              run({"map", "--table", file, "--at", "-3,0.1,5"}).out);
    const std::string back = data / "back.json";
    ASSERT_EQ(run({"presets", "apply", "a/b", "-o", back}).status, 0);
    EXPECT_EQ(readBytes(back), readBytes(file));
    EXPECT_EQ(run({"map", "--table", onlyFile(), "--at", "1"}).out, run({"map", "--table", file, "--at", "1"}).out)
        << "a preset's file is a table as well";
    EXPECT_THAT(run({"info", "a/b"}).out, HasSubstr("positions (2): -2 6"));
}

TEST_F(Presets, ones_own_preset_comes_before_a_built_in_one_of_its_name) {
    ASSERT_EQ(run({"presets", "save", "Rainbow", "--table", "Reverse Rainbow"}).status, 0);
    EXPECT_EQ(run({"map", "--table", "Rainbow", "--at", "0.5"}).out,
              run({"map", "--table", "Reverse Rainbow", "--at", "0.5"}).out);
    ASSERT_EQ(run({"presets", "delete", "Rainbow"}).status, 0);
    EXPECT_NE(run({"map", "--table", "Rainbow", "--at", "0.5"}).out,
              run({"map", "--table", "Reverse Rainbow", "--at", "0.5"}).out);
}

TEST_F(Presets, show_tells_mode_range_and_table) {
    ASSERT_EQ(run({"presets", "save", "mine", "--absolute", "--table", table("-2", "6")}).status, 0);
    EXPECT_THAT(
        run({"presets", "show", "mine"}).out,
        AllOf(HasSubstr("preset mine (user)\nabsolute, reference range none\n"), HasSubstr("positions (2): -2 6")));
    EXPECT_THAT(run({"presets", "show", "Uniform Heat"}).out, HasSubstr("relative, reference range 0 to 1\n"));
    EXPECT_THAT(run({"presets", "show", "Rainbow", "--json"}).out,
                AllOf(HasSubstr("\"absolute\": false"), HasSubstr("\"referenceRange\": []"),
                      HasSubstr("\"from\": \"built-in\""), HasSubstr("\"positions\": [-1, 1]")));
}

TEST_F(Presets, a_preset_is_replaced_only_on_request) {
    ASSERT_EQ(run({"presets", "save", "mine", "--table", "Rainbow"}).status, 0);
    const std::string before = readBytes(onlyFile());
    const ProgramRun again = run({"presets", "save", "mine", "--table", "Reverse Rainbow"});
    EXPECT_EQ(again.status, 1);
    EXPECT_THAT(again.error, HasSubstr("--replace"));
    EXPECT_EQ(readBytes(onlyFile()), before);
    EXPECT_EQ(run({"presets", "save", "mine", "--replace", "--table", "Reverse Rainbow"}).status, 0);
    EXPECT_NE(readBytes(onlyFile()), before);
}

TEST_F(Presets, presets_are_renamed_deleted_exported_and_imported) {
    ASSERT_EQ(run({"presets", "save", "a", "--table", "Rainbow"}).status, 0);
    EXPECT_EQ(run({"presets", "rename", "a", "b"}).status, 0);
    EXPECT_EQ(run({"presets", "list", "--kind", "user"}).out, "user       b\n");
    const std::string copy = data / "copy.json";
    ASSERT_EQ(run({"presets", "export", "b", "-o", copy}).status, 0);
    EXPECT_EQ(readBytes(copy), readBytes(onlyFile()));
    EXPECT_EQ(run({"presets", "export", "b", "-o", "-"}).out, readBytes(copy));
    const ProgramRun taken = run({"presets", "import", copy});
    EXPECT_EQ(taken.status, 1);
    EXPECT_THAT(taken.error, HasSubstr(copy + ": There is a preset \"b\" already. --replace replaces it."));
    EXPECT_EQ(run({"presets", "import", "--replace", copy}).status, 0);
    EXPECT_EQ(run({"presets", "delete", "b"}).status, 0);
    EXPECT_EQ(run({"presets", "import", copy}).status, 0);
    EXPECT_EQ(run({"presets", "list", "--kind", "user"}).out, "user       b\n");
    ASSERT_EQ(run({"presets", "export", "Reverse Rainbow", "-o", copy}).status, 0);
    EXPECT_EQ(run({"map", "--table", copy, "--at", "0.5"}).out,
              run({"map", "--table", "Reverse Rainbow", "--at", "0.5"}).out);
}

TEST_F(Presets, presets_that_come_with_the_program_stay) {
    for (const char* name : {"Rainbow", "Uniform Heat"}) {
        for (const ProgramRun& refused : {run({"presets", "delete", name}), run({"presets", "rename", name, "x"})}) {
            EXPECT_EQ(refused.status, 1);
            EXPECT_THAT(refused.error, HasSubstr("comes with the program"));
        }
    }
}

TEST_F(Presets, names_that_are_not_there_or_not_possible_are_unusable) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"presets", "show", "none"},
                                                      {"presets", "apply", "none", "-o", "-"},
                                                      {"presets", "delete", "none"},
                                                      {"presets", "rename", "none", "x"},
                                                      {"presets", "export", "none", "-o", "-"},
                                                      {"presets", "save", "", "--table", "Rainbow"},
                                                      {"presets", "save", "\xff", "--table", "Rainbow"},
                                                      {"presets", "save", "x", "--table", "none"},
                                                      {"presets", "import", "/nonexistent"},
                                                      {"presets"},
                                                      {"map", "--table", std::string(300, 'x'), "--at", "0"}}) {
        const ProgramRun refused = run(arguments);
        EXPECT_EQ(refused.status, 2) << arguments.back() << refused.error;
        EXPECT_EQ(refused.out, "");
        EXPECT_NE(refused.error, "");
    }
    EXPECT_TRUE(data.names().empty());
}

TEST_F(Presets, names_that_a_file_cannot_have_work_and_break_no_line) {
    const std::vector<std::string> names = {"../../escape", "/abs", std::string(300, 'n'), "two\nlines", "NUL", "Ä"};
    for (const std::string& name : names) {
        EXPECT_EQ(run({"presets", "save", name, "--table", "Rainbow"}).status, 0) << name;
        EXPECT_EQ(run({"map", "--table", name, "--at", "0"}).status, 0) << name;
    }
    EXPECT_EQ(data.names(), std::vector<std::string>{"lys_colortable"});
    const std::string list = run({"presets", "list", "--kind", "user"}).out;
    EXPECT_THAT(list, HasSubstr("\"two\\u000alines\""));
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), static_cast<long>(names.size()));
}

TEST_F(Presets, a_broken_preset_is_told_stays_and_hides_nobody) {
    ASSERT_EQ(run({"presets", "save", "a", "--table", "Rainbow"}).status, 0);
    const std::string file = onlyFile();
    ASSERT_EQ(run({"presets", "save", "b", "--table", "Rainbow"}).status, 0);
    const std::string cut = readBytes(file).substr(0, 500);
    data.write(file.substr(data.path().size() + 1), cut);
    const ProgramRun list = run({"presets", "list", "--kind", "user"});
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, "user       a\nuser       b\n");
    EXPECT_THAT(list.error, HasSubstr(file));
    const std::string output = data.write("out.json", "untouched");
    const ProgramRun apply = run({"presets", "apply", "a", "-o", output});
    EXPECT_EQ(apply.status, 2);
    EXPECT_THAT(apply.error, HasSubstr(file));
    EXPECT_EQ(readBytes(output), "untouched");
    EXPECT_EQ(readBytes(file), cut);
    EXPECT_EQ(run({"map", "--table", "b", "--at", "0"}).status, 0);
}

TEST_F(Presets, a_preset_of_a_later_version_is_applied_with_a_warning_and_never_overwritten) {
    ASSERT_EQ(run({"presets", "save", "a", "--table", "Rainbow"}).status, 0);
    std::string text = readBytes(onlyFile());
    text.replace(text.find("\"version\": 1"), 12, "\"version\": 2");
    data.write(onlyFile().substr(data.path().size() + 1), text);
    const ProgramRun map = run({"map", "--table", "a", "--at", "0"});
    EXPECT_EQ(map.status, 0);
    EXPECT_THAT(map.error, HasSubstr("newer version"));
    EXPECT_EQ(run({"presets", "save", "a", "--replace", "--table", "Rainbow"}).status, 1);
    EXPECT_EQ(run({"presets", "rename", "a", "b"}).status, 1);
    EXPECT_EQ(readBytes(onlyFile()), text);
}

TEST_F(Presets, the_file_of_a_preset_without_a_table_is_no_table) {
    ASSERT_EQ(run({"presets", "save", "a", "--table", "Rainbow"}).status, 0);
    const std::string text = readBytes(onlyFile());
    const auto begin = text.find("    \"ColorLookupTable\"");
    const auto end = text.find("\n    \"NameTemplate\"", begin) + 1;
    const std::string file = data.write("without.json", text.substr(0, begin) + text.substr(end));
    const ProgramRun refused = run({"map", "--table", file, "--at", "0"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(refused.error, HasSubstr("holds no table"));
}

TEST_F(Presets, a_folder_of_its_name_does_not_hide_a_preset) {
    const std::string name = data / "folder";
    std::filesystem::create_directory(name);
    EXPECT_THAT(run({"map", "--table", name, "--at", "0"}).error, HasSubstr(name));
    ASSERT_EQ(run({"presets", "save", name, "--table", "Reverse Rainbow"}).status, 0);
    const ProgramRun found = run({"map", "--table", name, "--at", "0.5"});
    EXPECT_EQ(found.status, 0) << found.error;
    EXPECT_EQ(found.out, run({"map", "--table", "Reverse Rainbow", "--at", "0.5"}).out);
}

TEST_F(Presets, export_to_standard_output_writes_the_bytes_of_the_file) {
    ASSERT_EQ(run({"presets", "save", "a", "--table", "Rainbow"}).status, 0);
    const std::string bytes = readBytes(onlyFile()) + "\n\n";
    data.write(onlyFile().substr(data.path().size() + 1), bytes);
    EXPECT_EQ(run({"presets", "export", "a", "-o", "-"}).out, bytes);
}

TEST_F(Presets, of_several_files_none_is_taken_in_if_one_cannot_be) {
    ASSERT_EQ(run({"presets", "save", "a", "--table", "Rainbow"}).status, 0);
    const std::string good = data / "good.json";
    ASSERT_EQ(run({"presets", "export", "a", "-o", good}).status, 0);
    ASSERT_EQ(run({"presets", "delete", "a"}).status, 0);
    const std::string bad = data.write("bad.json", "{}");
    const ProgramRun refused = run({"presets", "import", good, bad});
    EXPECT_EQ(refused.status, 2);
    EXPECT_THAT(refused.error, AllOf(HasSubstr(bad), Not(HasSubstr("--replace"))));
    EXPECT_EQ(run({"presets", "list", "--kind", "user"}).out, "");
    EXPECT_EQ(run({"presets", "import", good, good}).status, 1) << "they have one name";
    EXPECT_EQ(run({"presets", "list", "--kind", "user"}).out, "");
}
