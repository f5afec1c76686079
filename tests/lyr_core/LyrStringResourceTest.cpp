#include <lyr_core/LyrStringResource.h>

#include <string>

#include <gtest/gtest.h>

namespace {

// Gives every text back with its context and comment.
class Echo : public LyrI18n::Translator {
public:
    Echo() { LyrI18n::setTranslator(this); }
    ~Echo() override { LyrI18n::setTranslator(nullptr); }
    LyrString translate(const char* context, const char* key, const char* comment, Lyrenum language) const override {
        return LyrString("%1/%2/%3/%4").arg({context, key, comment, LyrString::fromNumber(int(language))});
    }
};

TEST(LyrStringResource, the_key_stands_in_for_a_missing_translation) {
    EXPECT_EQ(LyrStringResource("Placeholder", "Value type").translate(), "Value type");
}

TEST(LyrStringResource, the_text_is_translated_anew_each_time) {
    const LyrStringResource resource("Placeholder", "Value type", "a comment");
    {
        const Echo echo;
        EXPECT_EQ(resource.translate(Lyrenum(3)), "Placeholder/Value type/a comment/3");
        EXPECT_EQ(resource.translate(), "Placeholder/Value type/a comment/-1");
    }
    EXPECT_EQ(resource.translate(), "Value type");
}

TEST(LyrStringResource, an_empty_resource_is_null_in_every_language) {
    const Echo echo;
    EXPECT_TRUE(LyrStringResource().translate().isNull());
}

TEST(LyrStringResource, the_parts_are_copies) {
    std::string key = "Value type";
    const LyrStringResource resource("Placeholder", key.c_str(), "a comment");
    key.assign(key.size(), 'x');
    EXPECT_EQ(resource.getKey(), "Value type");
    EXPECT_EQ(resource.getContext(), "Placeholder");
    EXPECT_EQ(resource.getComment(), "a comment");
    EXPECT_EQ(resource, LyrStringResource("Placeholder", "Value type", "a comment"));
    EXPECT_FALSE(resource == LyrStringResource("Placeholder", "Value type"));
}

}  // namespace
