#include <lyr_core/LyrObjectFile.h>

#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRoleManager.h>

#include "FileTestObjects.h"

#include <gtest/gtest.h>

namespace {

using namespace file_test;
using Report = LyrObjectFile::Report;

/** The default sample, worked out by hand from the rules of the format. */
const std::string DEFAULT_TEXT = R"({
  "format": "lyr-object",
  "version": 1,
  "class": "FileTestSample",
  "properties": {
    "FileTestPositionList": [-1, 1],
    "FileTestLeafList": [
      {
        "class": "FileTestLeaf",
        "properties": {
          "Type": "Constant",
          "FileTestPoints": []
        }
      },
      {
        "class": "FileTestLeaf",
        "properties": {
          "Type": "Constant",
          "FileTestPoints": []
        }
      }
    ],
    "Quantity": "Length",
    "FileTestFiniteMode": [0, 0],
    "FileTestAutoLabel": true,
    "FileTestWeight": 0.5,
    "FileTestRange": [3.4028235e+38, -3.4028235e+38],
    "FileTestCount": -7,
    "FileTestSmall": 0,
    "FileTestOffset": [1, 2],
    "FileTestParameters": [0, 0, 0],
    "Color": [0, 0, 0, 1],
    "FileTestText": "plain",
    "FileTestKinds": [],
    "FileTestColors": [],
    "FileTestNumbers": [],
    "FileTestIntegers": [],
    "FileTestChild": null,
    "123456": 3
  }
}
)";

std::string textOf(const LyrObject& object) {
    std::string text;
    LyrString message;
    EXPECT_TRUE(LyrObjectFile::write(object, text, &message)) << message.utf8();
    return text;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    const auto at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), by);
}

}  // namespace

TEST(LyrObjectFile, writes_the_stated_layout) {
    LyrObjectPtr object(new Sample);
    EXPECT_EQ(textOf(*object), DEFAULT_TEXT);
}

TEST(LyrObjectFile, gives_back_what_it_wrote) {
    Sample::metaClass();
    LyrObjectPtr out;
    Report report;
    ASSERT_TRUE(LyrObjectFile::read(DEFAULT_TEXT, out, report)) << report.message.utf8();
    EXPECT_EQ(textOf(*out), DEFAULT_TEXT);
}

TEST(LyrObjectFile, refuses_a_value_of_the_wrong_type_and_says_where) {
    Sample::metaClass();
    LyrObjectPtr out;
    Report report;
    EXPECT_FALSE(LyrObjectFile::read(replaced(DEFAULT_TEXT, "[1, 2]", "[1, \"x\"]"), out, report));
    EXPECT_FALSE(out);
    EXPECT_STREQ(report.message.utf8(),
                 "line 30, properties.FileTestOffset[1]: a number is needed, or \"nan\", \"inf\", \"-inf\"");
}
