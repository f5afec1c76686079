#include <lyr_core/LyrString.h>

#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <unordered_set>

#include <gtest/gtest.h>

namespace {

// What a toolkit's string class looks like from here.
class ToolkitBytes {
public:
    explicit ToolkitBytes(std::string bytes) : mBytes(std::move(bytes)) {}
    const char* constData() const { return mBytes.c_str(); }
    long long size() const { return static_cast<long long>(mBytes.size()); }

private:
    std::string mBytes;
};

class ToolkitString {
public:
    ToolkitString() = default;
    static ToolkitString fromUtf8(const char* bytes, long long size) {
        ToolkitString text;
        text.mBytes.assign(bytes, static_cast<std::size_t>(size));
        text.mIsNull = false;
        return text;
    }
    bool isNull() const { return mIsNull; }
    ToolkitBytes toUtf8() const { return ToolkitBytes(mBytes); }
    const std::string& bytes() const { return mBytes; }

private:
    std::string mBytes;
    bool mIsNull = true;
};

static_assert(std::is_convertible_v<ToolkitString, LyrString> && std::is_convertible_v<LyrString, ToolkitString>);
static_assert(!std::is_convertible_v<LyrString, int> && !std::is_convertible_v<int, LyrString>);

TEST(LyrString, null_and_empty_are_told_apart) {
    const LyrString null;
    const LyrString empty("");
    EXPECT_TRUE(null.isNull());
    EXPECT_TRUE(null.isEmpty());
    EXPECT_FALSE(empty.isNull());
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_FALSE(null == empty);
    EXPECT_TRUE(null == LyrString());
    EXPECT_TRUE(empty == LyrString(std::string()));
}

TEST(LyrString, a_null_pointer_gives_the_null_string) {
    EXPECT_TRUE(LyrString::fromUtf8(nullptr).isNull());
    EXPECT_TRUE(LyrString(static_cast<const char*>(nullptr)).isNull());
    EXPECT_FALSE(LyrString::fromUtf8("").isNull());
}

TEST(LyrString, the_text_of_a_null_string_is_never_a_null_pointer) {
    ASSERT_NE(LyrString().utf8(), nullptr);
    EXPECT_STREQ(LyrString().utf8(), "");
    EXPECT_EQ(LyrString().view(), "");
}

TEST(LyrString, text_comes_back_byte_for_byte_also_when_it_is_not_utf8) {
    const char broken[] = "a\xff\xc3(\xe2\x82";
    EXPECT_STREQ(LyrString(broken).utf8(), broken);
    EXPECT_EQ(LyrString(broken).size(), std::strlen(broken));
    EXPECT_STREQ(LyrString("%1").arg(LyrString(broken)).utf8(), broken);
    EXPECT_STREQ(LyrString("\xc2\xb5m\xc2\xb2").utf8(), "\xc2\xb5m\xc2\xb2");
}

TEST(LyrString, a_view_may_hold_zero_bytes) {
    const std::string_view view("a\0b", 3);
    EXPECT_EQ(LyrString::fromUtf8(view).view(), view);
    EXPECT_EQ(LyrString::fromUtf8(view).size(), 3U);
}

TEST(LyrString, order_is_by_bytes_with_null_first) {
    EXPECT_TRUE(LyrString() < LyrString(""));
    EXPECT_TRUE(LyrString("") < LyrString("a"));
    EXPECT_TRUE(LyrString("a") < LyrString("ab"));
    EXPECT_TRUE(LyrString("Z") < LyrString("a"));
    EXPECT_TRUE(LyrString("z") < LyrString("\xc3\xa4"));
    EXPECT_FALSE(LyrString("b") < LyrString("ab"));
    EXPECT_FALSE(LyrString() < LyrString());
    EXPECT_TRUE(LyrString("b") >= "b");
}

TEST(LyrString, joined_strings_are_null_only_when_both_are) {
    EXPECT_EQ(LyrString("a") + "b", "ab");
    EXPECT_EQ("a" + LyrString("b"), "ab");
    EXPECT_EQ(LyrString() + LyrString("b"), "b");
    EXPECT_TRUE((LyrString() + LyrString()).isNull());
    EXPECT_FALSE((LyrString() + LyrString("")).isNull());
    LyrString text("x");
    text += text;
    EXPECT_EQ(text, "xx");
}

TEST(LyrString, equal_strings_have_equal_hashes) {
    const std::unordered_set<LyrString> set{"a", "b", LyrString(), LyrString("")};
    EXPECT_EQ(set.size(), 4U);
    EXPECT_TRUE(set.contains(LyrString(std::string("a"))));
    EXPECT_FALSE(set.contains("c"));
}

TEST(LyrString, an_argument_replaces_all_markers_of_the_lowest_number) {
    EXPECT_EQ(LyrString("%1 of %2").arg("a"), "a of %2");
    EXPECT_EQ(LyrString("%2 of %1").arg("a"), "%2 of a");
    EXPECT_EQ(LyrString("%2 of %3").arg("a").arg("b"), "a of b");
    EXPECT_EQ(LyrString("%1%1-%2-%1").arg("ab"), "abab-%2-ab");
    EXPECT_EQ(LyrString("%99").arg("a"), "a");
}

TEST(LyrString, a_marker_takes_two_digits_where_there_are_two) {
    EXPECT_EQ(LyrString("%10 %1").arg("a"), "%10 a");
    EXPECT_EQ(LyrString("%10 %1").arg("a").arg("b"), "b a");
    EXPECT_EQ(LyrString("%10 %9").arg("a"), "%10 a");
    EXPECT_EQ(LyrString("%100").arg("a"), "a0");
    EXPECT_EQ(LyrString("%1x").arg("a"), "ax");
}

TEST(LyrString, a_percent_sign_without_a_number_from_1_on_is_no_marker) {
    EXPECT_EQ(LyrString("50 %").arg("a"), "50 %");
    EXPECT_EQ(LyrString("%0 %05 %x %").arg("a"), "%0 %05 %x %");
    EXPECT_EQ(LyrString("%%1").arg("a"), "%a");
    EXPECT_EQ(LyrString("plain").arg("a"), "plain");
}

TEST(LyrString, without_a_marker_a_null_string_stays_null) {
    EXPECT_TRUE(LyrString().arg("a").isNull());
    EXPECT_FALSE(LyrString("").arg("a").isNull());
    EXPECT_EQ(LyrString("[%1]").arg(LyrString()), "[]");
    EXPECT_FALSE(LyrString("%1").arg(LyrString()).isNull());
}

TEST(LyrString, whole_numbers_are_written_in_full) {
    EXPECT_EQ(LyrString("%1").arg(0), "0");
    EXPECT_EQ(LyrString("%1").arg(-17), "-17");
    EXPECT_EQ(LyrString("%1").arg(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(LyrString("%1").arg(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(LyrString("%1").arg(true), "1");
    EXPECT_EQ(LyrString("%1").arg('x'), "x");
}

TEST(LyrString, real_numbers_have_six_significant_digits_without_trailing_zeros) {
    EXPECT_EQ(LyrString("%1").arg(0.1), "0.1");
    EXPECT_EQ(LyrString("%1").arg(0.1F), "0.1");
    EXPECT_EQ(LyrString("%1").arg(2.0), "2");
    EXPECT_EQ(LyrString("%1").arg(1234567.0), "1.23457e+06");
    EXPECT_EQ(LyrString("%1").arg(123456.7), "123457");
    EXPECT_EQ(LyrString("%1").arg(0.00001234567), "1.23457e-05");
    EXPECT_EQ(LyrString("%1").arg(3.4028235e38F), "3.40282e+38");
    EXPECT_EQ(LyrString("%1").arg(1.0 / 3.0), "0.333333");
}

TEST(LyrString, special_numbers_have_plain_texts) {
    const double nanValue = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(LyrString("%1").arg(nanValue), "nan");
    EXPECT_EQ(LyrString("%1").arg(-nanValue), "nan");
    EXPECT_EQ(LyrString("%1").arg(infinity), "inf");
    EXPECT_EQ(LyrString("%1").arg(-infinity), "-inf");
    EXPECT_EQ(LyrString("%1").arg(-0.0), "-0");
}

TEST(LyrString, the_format_and_the_precision_can_be_chosen) {
    EXPECT_EQ(LyrString("%1").arg(12.5, 'f', 2), "12.50");
    EXPECT_EQ(LyrString("%1").arg(1.0, 'f', 0), "1");
    EXPECT_EQ(LyrString("%1").arg(1234.5, 'e', 3), "1.234e+03");
    EXPECT_EQ(LyrString("%1").arg(1.0, 'f', -5), "1");
    // The largest number has 309 digits before the point; a precision out of reach is limited to 100 decimals.
    EXPECT_EQ(LyrString("%1").arg(-std::numeric_limits<double>::max(), 'f', 1000000).size(), 1U + 309U + 1U + 100U);
}

TEST(LyrString, several_arguments_at_once_do_not_touch_markers_in_each_other) {
    EXPECT_EQ(LyrString("%1-%2-%1").arg({"%2", "b"}), "%2-b-%2");
    EXPECT_EQ(LyrString("%1").arg("%2").arg("b"), "b");
    EXPECT_EQ(LyrString("%7 %3 %9").arg({"a", "b"}), "b a %9");
    EXPECT_EQ(LyrString("%1").arg({"a", "b"}), "a");
    EXPECT_EQ(LyrString("%1").arg(std::initializer_list<LyrString>{}), "%1");
}

TEST(LyrString, a_toolkit_string_is_converted_both_ways) {
    const ToolkitString source = ToolkitString::fromUtf8("\xc2\xb0", 2);
    const LyrString text = source;
    EXPECT_EQ(text, "\xc2\xb0");
    const ToolkitString back = text;
    EXPECT_EQ(back.bytes(), "\xc2\xb0");
    EXPECT_FALSE(back.isNull());
}

TEST(LyrString, null_and_empty_stay_apart_in_a_toolkit_string) {
    EXPECT_TRUE(LyrString(ToolkitString()).isNull());
    EXPECT_FALSE(LyrString(ToolkitString::fromUtf8("", 0)).isNull());
    EXPECT_TRUE(ToolkitString(LyrString()).isNull());
    EXPECT_FALSE(ToolkitString(LyrString("")).isNull());
}

}  // namespace
