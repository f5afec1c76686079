#include <lys_core/ApplicationPlaceholders.h>

#include <Sanitizers.h>
#include <gtest/gtest.h>

#include <ctime>

namespace {

LyrString text(const char* utf8) {
    return LyrString::fromUtf8(utf8);
}

LyrString answer(const LyrString& key, const LyrObject*) {
    return text("<") + key + text(">");
}
LyrString nothing(const LyrString&, const LyrObject*) {
    return {};
}

class Placeholders : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(ApplicationPlaceholders::add(text("part.name"), text("Name of the part"), {}, answer, "tests"));
        ASSERT_TRUE(ApplicationPlaceholders::add(text("part.gap"), text("Gap"), {}, nothing, "tests"));
    }
    void TearDown() override {
        ApplicationPlaceholders::removeAllFrom("tests");
        ApplicationPlaceholders::removeAllFrom("others");
    }
    static QString display(const char* given, bool* error = nullptr) {
        return ApplicationPlaceholders::internalToDisplayText(QString::fromUtf8(given), nullptr, error);
    }
    static QString edit(const QString& given) { return ApplicationPlaceholders::internalToEditText(given, nullptr); }
    static QString internal(const QString& given) {
        return ApplicationPlaceholders::editToInternalText(given, nullptr);
    }
};

}  // namespace

TEST_F(Placeholders, are_replaced_by_what_their_resolvers_give) {
    EXPECT_EQ(display("Part %{part.name}: %{part.gap}mm"), QStringLiteral("Part <part.name>: mm"));
    EXPECT_EQ(display("%{part.name}%{part.name}"), QStringLiteral("<part.name><part.name>"));
    EXPECT_EQ(display(""), QString());
}

TEST_F(Placeholders, that_nobody_knows_stay_as_they_are) {
    bool error = false;
    EXPECT_EQ(display("%{who} %{part.name} %{", &error), QStringLiteral("%{who} <part.name> %{"));
    EXPECT_TRUE(error);
    EXPECT_EQ(display("100 % {x} } {", &error), QStringLiteral("100 % {x} } {"));
    EXPECT_FALSE(error);
    EXPECT_EQ(display("%{%{part.name}}"), QStringLiteral("%{<part.name>}"));
    EXPECT_EQ(edit(QStringLiteral("%{who}")), QStringLiteral("%{who}"));
    EXPECT_EQ(internal(QStringLiteral("{Who} %{who}")), QStringLiteral("{Who} %{who}"));
}

TEST_F(Placeholders, are_edited_by_their_names) {
    const QString written = QStringLiteral("Part %{part.name} [%l]");
    const QString shown = QStringLiteral("Part {Name of the part} [%l]");
    EXPECT_EQ(edit(written), shown);
    EXPECT_EQ(internal(shown), written);
}

TEST_F(Placeholders, stay_when_they_are_edited_behind_a_percent_sign) {
    const QString written = QStringLiteral("90 %%{part.name}");
    EXPECT_EQ(edit(written), QStringLiteral("90 %{Name of the part}"));
    EXPECT_EQ(internal(edit(written)), written);
}

TEST_F(Placeholders, in_a_long_text_take_no_time) {
    const QString many = QString(QStringLiteral("%{")).repeated(500000) + QLatin1Char('}');
    const std::clock_t begin = std::clock();
    EXPECT_EQ(edit(many), many);
    EXPECT_EQ(internal(many), many);
    EXPECT_LT(std::clock() - begin, CLOCKS_PER_SEC * SANITIZER_SLOWDOWN);
}

TEST_F(Placeholders, of_a_module_go_together_and_those_of_others_stay) {
    ASSERT_TRUE(ApplicationPlaceholders::add(text("other"), text("Other"), {}, answer, "others"));
    EXPECT_EQ(ApplicationPlaceholders::removeAllFrom("tests"), 2);
    EXPECT_FALSE(ApplicationPlaceholders::contains(text("part.name")));
    EXPECT_TRUE(ApplicationPlaceholders::contains(text("other")));
}

TEST_F(Placeholders, with_a_key_that_is_taken_or_not_proper_are_refused) {
    EXPECT_FALSE(ApplicationPlaceholders::add(text("part.name"), text("Again"), {}, answer, "tests"));
    EXPECT_FALSE(ApplicationPlaceholders::add(text(""), text("Empty"), {}, answer, "tests"));
    EXPECT_FALSE(ApplicationPlaceholders::add(text("a}"), text("Brace"), {}, answer, "tests"));
    EXPECT_FALSE(ApplicationPlaceholders::add(text("b"), text("{"), {}, answer, "tests"));
    EXPECT_FALSE(ApplicationPlaceholders::add(text("c"), text("None"), {}, nullptr, "tests"));
}
