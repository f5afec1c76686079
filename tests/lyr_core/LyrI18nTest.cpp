#include <lyr_core/LyrI18n.h>

#include <string>

#include <gtest/gtest.h>

namespace {

// Knows one text and writes down what it was asked for.
class German : public LyrI18n::Translator {
public:
    German() { EXPECT_EQ(LyrI18n::setTranslator(this), nullptr); }
    ~German() override { EXPECT_EQ(LyrI18n::setTranslator(nullptr), this); }

    LyrString translate(const char* context, const char* key, const char* comment, Lyrenum language) const override {
        asked = std::string(context) + "|" + key + "|" + comment + "|" + std::to_string(int(language));
        return std::string(key) == "Inch" ? LyrString("Zoll") : LyrString();
    }

    mutable std::string asked;
};

TEST(LyrI18n, without_a_translator_a_text_is_its_own_translation) {
    ASSERT_EQ(LyrI18n::getTranslator(), nullptr);
    EXPECT_EQ(LyrI18n::translate("Quantity", "Inch", "a unit"), "Inch");
    EXPECT_EQ(LyrI18n::translate(nullptr, "", nullptr), "");
    EXPECT_TRUE(LyrI18n::translate("Quantity", nullptr, nullptr).isNull());
}

TEST(LyrI18n, the_installed_translator_translates_what_it_knows) {
    const German german;
    EXPECT_EQ(LyrI18n::getTranslator(), &german);
    EXPECT_EQ(LyrI18n::translate("Quantity", "Inch", "a unit", Lyrenum(7)), "Zoll");
    EXPECT_EQ(german.asked, "Quantity|Inch|a unit|7");
    EXPECT_EQ(LyrI18n::translate("Quantity", "Foot"), "Foot");
}

TEST(LyrI18n, a_translator_is_never_given_a_null_pointer) {
    const German german;
    EXPECT_EQ(LyrI18n::translate(nullptr, "Inch", nullptr), "Zoll");
    EXPECT_EQ(german.asked, "|Inch||-1");
    german.asked.clear();
    EXPECT_TRUE(LyrI18n::translate("Quantity", nullptr, nullptr).isNull());
    EXPECT_EQ(german.asked, "");
}

}  // namespace
