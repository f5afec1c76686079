#include <lyr_core/LyrObjectFile.h>

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>

#include "FileTestObjects.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <random>

namespace {

using namespace file_test;
using Report = LyrObjectFile::Report;

/** A class that files may not make objects of. */
class Only : public LyrObject {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestSingleton", sizeof(Only), &LyrObject::metaClass(),
                                       new LyrClassFactory<Only>, "file_test", 0, nullptr, 0, 0, 0, true);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

/** A sample that is not the default one, so that a change of it shows. */
LyrObjectPtr makeTarget() {
    Only::metaClass();
    LyrObjectPtr target(new Sample);
    auto& sample = static_cast<Sample&>(*target);
    sample.weight.setValue(123.0f);
    sample.setNameTemplate("target");
    const LyrObjectLink link(new Leaf, nullptr, -1);
    sample.leaves.initArray(0, 0, &link);
    return target;
}

/** Reads a text that must be refused, both ways, and checks that nothing has changed. Gives the message. */
std::string refusal(const std::string& text) {
    const LyrObjectPtr target = makeTarget();
    const std::string before = textOf(*target);
    const LyrObject* leaf = static_cast<Sample&>(*target).leaves.view()[0].getLink();
    const LyrObjectPtr untouched(new Leaf);
    LyrObjectPtr out = untouched;
    Report report;
    EXPECT_FALSE(LyrObjectFile::read(text, out, report));
    EXPECT_FALSE(report.ok);
    EXPECT_EQ(out, untouched);
    EXPECT_FALSE(LyrObjectFile::readInto(text, *target, report));
    EXPECT_EQ(textOf(*target), before);
    EXPECT_EQ(static_cast<Sample&>(*target).leaves.view()[0].getLink(), leaf);
    return report.message.utf8();
}

/** The message for the default text with one passage replaced. */
std::string refusalWith(const std::string& what, const std::string& by) {
    return refusal(replaced(DEFAULT_TEXT, what, by));
}

/** The line of the default text in which a passage begins. */
long lineOf(const std::string& what) {
    const auto at = static_cast<std::ptrdiff_t>(DEFAULT_TEXT.find(what));
    return 1 + std::count(DEFAULT_TEXT.begin(), DEFAULT_TEXT.begin() + at, '\n');
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

/** A file whose only property is a list of numbers. */
std::string withNumbers(const std::string& items) {
    return R"({"format":"lyr-object","version":1,"class":"FileTestSample","properties":{"FileTestNumbers":[)" + items +
           "]}}";
}

constexpr const char* FLOAT_NEEDED = "a number is needed, or \"nan\", \"inf\", \"-inf\"";

}  // namespace

TEST(LyrObjectFileBadInput, every_text_that_is_cut_off_is_refused) {
    // All but the last line break belongs to the text.
    for (std::size_t length = 0; length + 1 < DEFAULT_TEXT.size(); ++length) {
        const std::string message = refusal(DEFAULT_TEXT.substr(0, length));
        ASSERT_TRUE(message.starts_with("not valid JSON, line ")) << length << ": " << message;
    }
}

TEST(LyrObjectFileBadInput, what_is_no_json_is_refused_with_line_and_column) {
    EXPECT_EQ(refusal(""),
              "not valid JSON, line 1, column 1: syntax error while parsing value - unexpected end of input; "
              "expected '[', '{', or a literal");
    EXPECT_TRUE(refusal("hello").starts_with("not valid JSON, line 1, column 1: "));
    EXPECT_TRUE(refusal(DEFAULT_TEXT + "x").starts_with("not valid JSON, line 42, column 1: "));
    EXPECT_TRUE(refusal(DEFAULT_TEXT + DEFAULT_TEXT).starts_with("not valid JSON, line 42, column 1: "));
    EXPECT_TRUE(refusalWith("[-1, 1],", "[-1, 1,],").starts_with("not valid JSON, line 6, column "));
    EXPECT_TRUE(refusalWith("[-1, 1]", "[-1, NaN]").starts_with("not valid JSON, line 6, column "));
    EXPECT_TRUE(refusalWith("[-1, 1]", "[-1, 01]").starts_with("not valid JSON, line 6, column "));
    EXPECT_TRUE(refusalWith("[-1, 1]", "[-1, +1]").starts_with("not valid JSON, line 6, column "));
    EXPECT_TRUE(refusalWith("[-1, 1]", "[-1, .5]").starts_with("not valid JSON, line 6, column "));
    EXPECT_TRUE(refusalWith("[-1, 1],", "[-1, 1], // remark\n").starts_with("not valid JSON, line 6, column "));
    EXPECT_TRUE(refusalWith("\"plain\"", "'plain'").starts_with("not valid JSON, line "));
    EXPECT_TRUE(refusalWith("\"plain\"", "\"pl\nain\"").starts_with("not valid JSON, line "));
    EXPECT_TRUE(refusalWith("\"plain\"", "\"\xff\"").starts_with("not valid JSON, line "));
    EXPECT_TRUE(refusalWith("\"plain\"", "\"\\ud800\"").starts_with("not valid JSON, line "));
    EXPECT_TRUE(refusal("\xff\xfe{\0}\0").starts_with("not valid JSON, line 1"));
}

TEST(LyrObjectFileBadInput, a_byte_order_mark_is_passed_over) {
    LyrObjectPtr out;
    Report report;
    ASSERT_TRUE(LyrObjectFile::read("\xef\xbb\xbf" + DEFAULT_TEXT, out, report)) << report.message.utf8();
    EXPECT_EQ(textOf(*out), DEFAULT_TEXT);
}

TEST(LyrObjectFileBadInput, a_zero_byte_does_not_end_the_text) {
    EXPECT_EQ(refusal(DEFAULT_TEXT + std::string(1, '\0')), "line 42: not valid JSON, there is a zero byte");
    EXPECT_EQ(refusal(std::string(1000, '\0')), "line 1: not valid JSON, there is a zero byte");
}

TEST(LyrObjectFileBadInput, the_message_of_a_monstrous_text_stays_short) {
    const std::string monster(1000000, 'x');
    EXPECT_LT(refusal("\"" + monster).size(), 400u);
    EXPECT_LT(refusal(monster).size(), 400u);
    EXPECT_LT(refusalWith("\"Length\"", '"' + monster + '"').size(), 400u);
    EXPECT_LT(refusalWith("FileTestSample", monster).size(), 400u);
    EXPECT_LT(refusalWith("0.5", repeated("9", 1000000)).size(), 400u);
    EXPECT_LT(refusalWith("0.5", "1" + repeated("0", 100)).size(), 400u);
    EXPECT_LT(refusal("{\"" + monster + "\":1,\"" + monster + "\":1}").size(), 400u);
}

TEST(LyrObjectFileBadInput, absurd_nesting_is_refused_without_trouble) {
    for (const std::string opening : {"[", "{\"a\":"}) {
        EXPECT_EQ(refusal(repeated(opening, 100000)), "line 1: nested more than 64 levels deep");
        EXPECT_EQ(refusal(repeated(opening, 65)), "line 1: nested more than 64 levels deep");
        EXPECT_TRUE(refusal(repeated(opening, 64)).starts_with("not valid JSON, line 1"));
    }
    std::string family = "null";
    for (int i = 0; i < 1000; ++i) {
        family = R"({"class":"FileTestSample","properties":{"FileTestLeafList":[],"FileTestChild":)" + family + "}}";
    }
    EXPECT_EQ(refusalWith("\"FileTestChild\": null", "\"FileTestChild\": " + family),
              "line 38: nested more than 64 levels deep");
}

TEST(LyrObjectFileBadInput, members_that_are_there_twice_are_refused) {
    EXPECT_EQ(refusalWith("  \"version\": 1,", "  \"version\": 1, \"version\": 1,"),
              "line 1: the member \"version\" is there twice");
    EXPECT_EQ(refusalWith("    \"FileTestWeight\": 0.5,", "    \"FileTestWeight\": 0.5, \"FileTestWeight\": 0.5,"),
              "line 5: the member \"FileTestWeight\" is there twice");
    EXPECT_EQ(refusalWith("\"FileTestChild\": null", "\"FileTestChild\": {\"a\": 1, \"b\": 2, \"a\": 3}"),
              "line 38: the member \"a\" is there twice");
}

TEST(LyrObjectFileBadInput, a_wrong_header_is_refused) {
    EXPECT_EQ(refusal("[]"), "line 1: this is no object file: there is no \"format\": \"lyr-object\"");
    EXPECT_EQ(refusal("3"), "line 1: this is no object file: there is no \"format\": \"lyr-object\"");
    EXPECT_EQ(refusalWith("\"lyr-object\"", "\"lyr-objects\""),
              "line 1: this is no object file: there is no \"format\": \"lyr-object\"");
    EXPECT_EQ(refusalWith("  \"format\": \"lyr-object\",\n", ""),
              "line 1: this is no object file: there is no \"format\": \"lyr-object\"");
    for (const char* version : {"0", "-1", "1.0", "\"1\"", "true", "1e0", "-99999999999999999999", "[1]"}) {
        EXPECT_EQ(refusalWith("\"version\": 1", std::string("\"version\": ") + version),
                  "line 3: \"version\" must be a whole number from 1 on")
            << version;
    }
    EXPECT_EQ(refusalWith("  \"version\": 1,\n", ""), "line 1: \"version\" must be a whole number from 1 on");
}

TEST(LyrObjectFileBadInput, wrong_classes_are_refused) {
    const std::string sample = "\"class\": \"FileTestSample\"";
    EXPECT_EQ(refusalWith("  " + sample + ",\n", ""), "line 1: \"class\" must name a class");
    EXPECT_EQ(refusalWith(sample, "\"class\": 7"), "line 4: \"class\" must name a class");
    EXPECT_EQ(refusalWith(sample, "\"class\": \"\""), "line 4: \"class\" must name a class");
    for (const std::string name : {"Nobody", "LyrProperty", "LyrClass", "FileTestSingleton", "FileTestSample\\u0000"}) {
        const std::string shown = name == "FileTestSample\\u0000" ? "FileTestSample"
                                                                  : name +
                                                                        "\" can be made; the module that "
                                                                        "knows it may not be loaded";
        EXPECT_EQ(refusalWith(sample, "\"class\": \"" + name + '"'), "line 4: no object of the class \"" + shown)
            << name;
    }
    EXPECT_EQ(refusalWith(sample, "\"class\": \"Nobody\", \"base\": \"NobodyElse\""),
              "line 4: no object of the class \"Nobody\" can be made; the module that knows it may not be loaded");
    EXPECT_EQ(
        refusalWith(sample, "\"class\": \"FileTestSingleton\", \"base\": \"FileTestSample\""),
        "line 4: no object of the class \"FileTestSingleton\" can be made; the module that knows it may not be loaded");
    EXPECT_EQ(refusalWith("\"class\": \"FileTestLeaf\"", "\"class\": \"Nobody\""),
              "line 9, properties.FileTestLeafList[0]: no object of the class \"Nobody\" can be made; the module that "
              "knows it "
              "may not be loaded");
}

TEST(LyrObjectFileBadInput, properties_that_are_no_object_are_refused) {
    EXPECT_EQ(refusal(R"({"format": "lyr-object", "version": 1, "class": "FileTestSample"})"),
              "line 1: \"properties\" must be there, as an object");
    EXPECT_EQ(refusal(R"({"format": "lyr-object", "version": 1, "class": "FileTestSample", "properties": []})"),
              "line 1: \"properties\" must be there, as an object");
}

TEST(LyrObjectFileBadInput, values_of_the_wrong_type_are_refused_with_their_place) {
    const struct {
        const char* what;
        const char* by;
        std::string message;
    } cases[] = {
        {"[-1, 1]", "3", "properties.FileTestPositionList: an array is needed"},
        {"[-1, 1]", "[-1, true]", std::string("properties.FileTestPositionList[1]: ") + FLOAT_NEEDED},
        {"[-1, 1]", "[-1, null]", std::string("properties.FileTestPositionList[1]: ") + FLOAT_NEEDED},
        {"[-1, 1]", "[-1, [1]]", std::string("properties.FileTestPositionList[1]: ") + FLOAT_NEEDED},
        {"[-1, 1]", "[-1, \"NaN\"]", std::string("properties.FileTestPositionList[1]: ") + FLOAT_NEEDED},
        {"[-1, 1]", "[-1, \"inf\"]", "properties.FileTestPositionList[1]: the number must be finite"},
        {"[-1, 1]", "[\"nan\", 1]", "properties.FileTestPositionList[0]: the number must be finite"},
        {"[-1, 1]", "[\n-1,\n3.5e38\n]",
         "properties.FileTestPositionList[1]: 3.5e38 is beyond the range of a float, ±3.4028235e+38"},
        {"[-1, 1]", "[-1, -1e39]",
         "properties.FileTestPositionList[1]: -1e39 is beyond the range of a float, ±3.4028235e+38"},
        {"[-1, 1]", "[-1,\n1e400\n]", "a number is beyond the range of a double"},
        {"\"FileTestLeafList\": [", "\"FileTestLeafList\": [ 5,",
         "properties.FileTestLeafList[0]: an object is needed"},
        {"\"Length\"", "\"Longth\"",
         "properties.Quantity: \"Longth\" is no identifier known here; the module that knows it may not be "
         "loaded"},
        {"\"Length\"", "true",
         "properties.Quantity: an identifier is needed: a registered name, or a whole number of 32 bits"},
        {"\"Length\"", "1.5",
         "properties.Quantity: an identifier is needed: a registered name, or a whole number of 32 bits"},
        {"\"Length\"", "2147483648",
         "properties.Quantity: an identifier is needed: a registered name, or a whole number of 32 bits"},
        {"[0, 0],", "[0],", "properties.FileTestFiniteMode: an array of 2 is needed"},
        {"[0, 0],", "[0, 0, 0],", "properties.FileTestFiniteMode: an array of 2 is needed"},
        {"[0, 0],", "0,", "properties.FileTestFiniteMode: an array of 2 is needed"},
        {"true", "1", "properties.FileTestAutoLabel: true or false is needed"},
        {"true", "null", "properties.FileTestAutoLabel: true or false is needed"},
        {"0.5", "{}", std::string("properties.FileTestWeight: ") + FLOAT_NEEDED},
        {"0.5", "\"0.5\"", std::string("properties.FileTestWeight: ") + FLOAT_NEEDED},
        {"-7", "-7.0", "properties.FileTestCount: a whole number of 64 bits is needed"},
        {"-7", "9223372036854775808", "properties.FileTestCount: a whole number of 64 bits is needed"},
        {"-7", "\"7\"", "properties.FileTestCount: a whole number of 64 bits is needed"},
        {"\"FileTestSmall\": 0", "\"FileTestSmall\": 11", "properties.FileTestSmall: the value is not allowed here"},
        {"[0, 0, 0]", "[0, 0]", "properties.FileTestParameters: an array of 3 is needed"},
        {"[0, 0, 0, 1]", "[0, 0, 0]", "properties.Color: an array of 4 is needed"},
        {"\"plain\"", "7", "properties.FileTestText: a text is needed, or null"},
        {"\"plain\"", "\"pl\\u0000ain\"", "properties.FileTestText: a text may not hold the character 0"},
        {"\"FileTestChild\": null", "\"FileTestChild\": []", "properties.FileTestChild: an object is needed"},
        {"\"FileTestChild\": null", "\"FileTestChild\": null, \"NameTemplate\": 5",
         "properties.NameTemplate: a text is needed, or null"},
        {"\"FileTestPoints\": []", "\"FileTestPoints\": [[0, 1], [1]]",
         "properties.FileTestLeafList[0].properties.FileTestPoints[1]: an array of 2 is needed"},
        {"\"FileTestPoints\": []", "\"FileTestPoints\": [[0, \"x\"]]",
         std::string("properties.FileTestLeafList[0].properties.FileTestPoints[0][1]: ") + FLOAT_NEEDED},
    };
    for (const auto& [what, by, message] : cases) {
        // The value that is wrong stands in the last line of what was put in, but for its closing bracket.
        const std::string_view put = by;
        const auto lines = std::count(put.begin(), put.end(), '\n') - (put.ends_with("\n]") ? 1 : 0);
        const std::string place =
            "line " + std::to_string(lineOf(what) + lines) + (message.starts_with("properties") ? ", " : ": ");
        EXPECT_EQ(refusalWith(what, by), place + message) << what << " -> " << by;
    }
}

TEST(LyrObjectFileBadInput, an_object_that_refuses_a_value_late_keeps_all_that_it_had) {
    const LyrObjectPtr target = makeTarget();
    auto& sample = static_cast<Sample&>(*target);
    const float numbers[] = {1.0f, 2.0f};
    sample.numbers.initArray(0, 1, numbers);
    const std::string before = textOf(*target);
    const LyrObject* leaf = sample.leaves.view()[0].getLink();
    const std::string text =
        replaced(DEFAULT_TEXT, "\"FileTestChild\": null", "\"FileTestChild\": null, \"Unknown\": 5");
    Report report;
    {
        struct Silence : LyrError::Listener {
            bool errorEmitted(const LyrError::Message&) override { return true; }
        } silence;
        // A list that somebody reads cannot be written.
        const float* items = sample.numbers.lockArrayPtr();
        EXPECT_FALSE(LyrObjectFile::readInto(text, *target, report));
        sample.numbers.unlockArrayPtr(items);
    }
    EXPECT_STREQ(report.message.utf8(), "the object refused the values; it is as it was");
    EXPECT_EQ(textOf(*target), before);
    EXPECT_EQ(sample.leaves.view()[0].getLink(), leaf);
    EXPECT_TRUE(LyrObjectFile::readInto(text, *target, report));
}

TEST(LyrObjectFileBadInput, more_values_or_objects_than_a_file_may_hold_are_refused) {
    EXPECT_EQ(refusal(withNumbers(repeated("0,", 4194304) + "0")), "line 1: more values than an object file may hold");
    const std::string leaf = R"({"class":"FileTestLeaf","properties":{}},)";
    const std::string text =
        R"({"format":"lyr-object","version":1,"class":"FileTestSample","properties":{"FileTestLeafList":[)";
    EXPECT_EQ(refusal(text + repeated(leaf, 100000) + "null]}}"),
              "line 1, properties.FileTestLeafList[99999]: more objects than a file may hold");
}

TEST(LyrObjectFileBadInput, random_damage_is_refused_or_read_but_never_changes_anything_half_way) {
    std::mt19937 random(7);
    const LyrObjectPtr target = makeTarget();
    std::string present = textOf(*target);
    int refused = 0;
    for (int i = 0; i < 6000; ++i) {
        std::string text = DEFAULT_TEXT;
        for (int k = 0; k <= i % 3; ++k) {
            const auto at = random() % text.size();
            switch (random() % 3) {
                case 0:
                    text[at] = static_cast<char>(random());
                    break;
                case 1:
                    text.erase(at, 1 + random() % 8);
                    break;
                default:
                    text.insert(at, text.substr(random() % text.size(), 1 + random() % 8));
            }
        }
        Report report;
        if (LyrObjectFile::readInto(text, *target, report)) {
            present = textOf(*target);
        } else {
            ++refused;
            ASSERT_FALSE(report.message.isEmpty());
            ASSERT_EQ(textOf(*target), present) << text;
        }
    }
    EXPECT_GT(refused, 3000);
    EXPECT_LT(refused, 6000);
}

TEST(LyrObjectFileBadInput, a_refused_file_leaves_no_object_behind) {
    const auto count = [] { return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("FileTestLeaf")); };
    makeTarget();
    const auto before = count();
    refusalWith("\"123456\": 3", "\"123456\": \"x\"");
    EXPECT_EQ(count(), before);
}

// Files

TEST(LyrObjectFileBadInput, files_that_cannot_be_read_are_refused_with_path_and_reason) {
    const TemporaryFolder folder;
    folder.write("empty", "");
    folder.write("cut", DEFAULT_TEXT.substr(0, 100));
    std::filesystem::create_directory(folder.file("sub"));
    ::mkfifo(folder.file("pipe").c_str(), 0600);
    std::filesystem::create_symlink("ring", folder.file("ring"));
    // It claims more than there is on the disk, and must not cost memory.
    folder.write("huge", "{");
    std::filesystem::resize_file(folder.file("huge"), 1ull << 40);
    const std::pair<const char*, const char*> cases[] = {
        {"none", "cannot be opened: No such file or directory; check the path"},
        {"ring", "cannot be opened: Too many levels of symbolic links"},
        {"sub", "this is a folder, not a file"},
        {"pipe", "this is no ordinary file"},
        {"huge", "larger than the 64 MiB that are read"},
        {"empty",
         "not valid JSON, line 1, column 1: syntax error while parsing value - unexpected end of input; expected '[', "
         "'{', or a literal"},
    };
    const LyrObjectPtr target = makeTarget();
    const std::string before = textOf(*target);
    for (const auto& [name, reason] : cases) {
        LyrObjectPtr out;
        Report report;
        const std::string message = folder.file(name) + ": " + reason;
        EXPECT_FALSE(LyrObjectFile::load(folder.file(name), out, report));
        EXPECT_EQ(report.message.utf8(), message);
        EXPECT_FALSE(LyrObjectFile::loadInto(folder.file(name), *target, report));
        EXPECT_EQ(report.message.utf8(), message);
        EXPECT_FALSE(out);
    }
    EXPECT_EQ(textOf(*target), before);
    Report report;
    EXPECT_FALSE(LyrObjectFile::loadInto(folder.file("cut"), *target, report));
    EXPECT_TRUE(
        std::string(report.message.utf8()).starts_with(folder.file("cut") + ": not valid JSON, line 6, column "));
    EXPECT_EQ(folder.read("cut"), DEFAULT_TEXT.substr(0, 100));
}

TEST(LyrObjectFileBadInput, a_file_that_may_not_be_read_is_neither_loaded_nor_replaced) {
    const TemporaryFolder folder;
    folder.write("a", DEFAULT_TEXT);
    ::chmod(folder.path().c_str(), 0777);
    ::chmod(folder.file("a").c_str(), 0222);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
            ::_exit(99);
        }
        LyrObjectPtr object(new Sample);
        LyrObjectPtr out;
        Report report;
        const bool loaded = LyrObjectFile::load(folder.file("a"), out, report);
        const bool loadTold =
            std::string(report.message.utf8()).find("cannot be opened: Permission denied") != std::string::npos;
        const bool saved = LyrObjectFile::save(*object, folder.file("a"), report);
        const bool saveTold = std::string(report.message.utf8()).find("its version is unknown") != std::string::npos;
        ::_exit((loaded ? 1 : 0) + (loadTold ? 0 : 2) + (saved ? 4 : 0) + (saveTold ? 0 : 8));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0);
    EXPECT_EQ(folder.read("a"), DEFAULT_TEXT);
}
