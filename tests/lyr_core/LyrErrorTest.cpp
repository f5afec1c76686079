#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrError.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

using namespace core_test;

namespace {

/** Notes its name and answers as told. */
class Listener : public LyrError::Listener {
public:
    Listener(std::vector<std::string>& words, std::string name, bool takes)
        : mWords(words), mName(std::move(name)), mTakes(takes) {}
    bool errorEmitted(const LyrError::Message& message) override {
        mWords.push_back(mName + " " + std::to_string(int(message.getCode())));
        if (onError) {
            onError(message);
        }
        return mTakes;
    }
    std::function<void(const LyrError::Message&)> onError;

private:
    std::vector<std::string>& mWords;
    std::string mName;
    bool mTakes;
};

void emit(int code) {
    LyrError::emitError(LyrError::Message(Lyrenum(code)));
}

class LyrErrorTest : public testing::Test {
protected:
    std::vector<std::string> words;
    Listener last{words, "last", true};  ///< made first, so it hears last
};

using Words = std::vector<std::string>;

}  // namespace

TEST_F(LyrErrorTest, a_message_has_a_code_and_perhaps_a_source) {
    const LyrClass object;
    const LyrError::Message with(&object, Lyr::WrongType);
    EXPECT_EQ(with.getSource(), &object);
    EXPECT_EQ(with.getCode(), Lyr::WrongType);
    const LyrError::Message without(Lyr::AllocationFailed);
    EXPECT_EQ(without.getSource(), nullptr);
    EXPECT_EQ(without.getCode(), static_cast<int>(0xF3CB0006u));
}

TEST_F(LyrErrorTest, a_message_says_what_failed_and_the_class_of_the_source) {
    const Node node;
    EXPECT_EQ(LyrError::Message(&node, Lyr::WrongType).getText(), "an object is not of the expected type (TestNode)");
    EXPECT_EQ(LyrError::Message(Lyr::AllocationFailed).getText(), "memory could not be allocated");
    EXPECT_EQ(LyrError::Message(Lyrenum(17)).getText(), "error 17");
}

TEST_F(LyrErrorTest, the_listener_made_last_hears_first_and_may_keep_the_error) {
    Listener middle(words, "middle", true), first(words, "first", false);
    emit(5);
    EXPECT_EQ(words, (Words{"first 5", "middle 5"}));
}

TEST_F(LyrErrorTest, older_listeners_hear_what_younger_ones_pass_by) {
    Listener middle(words, "middle", false), first(words, "first", false);
    emit(5);
    EXPECT_EQ(words, (Words{"first 5", "middle 5", "last 5"}));
}

TEST_F(LyrErrorTest, a_listener_hears_nothing_after_its_end) {
    { const Listener brief(words, "brief", false); }
    emit(5);
    EXPECT_EQ(words, Words{"last 5"});
}

TEST_F(LyrErrorTest, a_listener_that_goes_while_others_hear_is_not_called) {
    std::optional<Listener> middle(std::in_place, words, "middle", false);
    Listener first(words, "first", false);
    first.onError = [&](const auto&) { middle.reset(); };
    emit(5);
    EXPECT_EQ(words, (Words{"first 5", "last 5"}));
}

TEST_F(LyrErrorTest, a_listener_that_comes_while_others_hear_waits_for_the_next_error) {
    std::optional<Listener> added;
    Listener first(words, "first", false);
    first.onError = [&](const auto&) {
        if (!added) {
            added.emplace(words, "added", false);
        }
    };
    emit(5);
    EXPECT_EQ(words, (Words{"first 5", "last 5"}));
    words.clear();
    emit(6);
    EXPECT_EQ(words, (Words{"added 6", "first 6", "last 6"}));
}

TEST_F(LyrErrorTest, an_error_inside_a_listener_is_told_in_between) {
    Listener first(words, "first", false);
    first.onError = [](const LyrError::Message& message) {
        if (message.getCode() == 5) {
            emit(6);
        }
    };
    emit(5);
    EXPECT_EQ(words, (Words{"first 5", "first 6", "last 6", "last 5"}));
}

TEST_F(LyrErrorTest, a_listener_that_fails_has_not_heard) {
    Listener first(words, "first", true);
    first.onError = [](const auto&) { throw std::bad_alloc(); };
    emit(5);
    EXPECT_EQ(words, (Words{"first 5", "last 5"}));
}

TEST_F(LyrErrorTest, a_property_reports_with_its_owner_as_source) {
    const Held<> node;
    Single<float> loose;
    Errors errors;
    EXPECT_FALSE(node->weight.emitError(Lyr::Failed));
    EXPECT_FALSE(loose.emitError(Lyr::ReadOnly));
    EXPECT_EQ(errors.codes, (std::vector<int>{Lyr::Failed, Lyr::ReadOnly}));
    EXPECT_EQ(errors.sources, (std::vector<const LyrClass*>{node.get(), &loose}));
}

TEST(LyrErrorDeathTest, without_a_listener_an_error_is_one_line_on_standard_error) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const Node node;
            LyrError::emitError(LyrError::Message(&node, Lyr::InvalidParameters));
            std::exit(0);
        },
        testing::ExitedWithCode(0), "lyr: the parameters were refused \\(TestNode\\)");
}

TEST(LyrErrorDeathTest, equal_errors_stand_once_on_standard_error_with_their_number) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const Node node;
            const Node other;
            for (int i = 0; i < 100; ++i) {
                LyrError::emitError(LyrError::Message(&node, Lyr::WrongType));
                LyrError::emitError(LyrError::Message(&other, Lyr::WrongType));
            }
            LyrError::emitError(LyrError::Message(&node, Lyr::Failed));
            LyrError::emitError(LyrError::Message(&node, Lyr::WrongType));
            std::exit(0);
        },
        testing::ExitedWithCode(0),
        testing::EndsWith("lyr: an object is not of the expected type (TestNode)\n"
                          "lyr: an object is not of the expected type (TestNode)\n"
                          "lyr: the errors above were repeated 198 times\n"
                          "lyr: the operation failed (TestNode)\n"));
}

TEST(LyrErrorDeathTest, an_error_is_told_again_after_many_others) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            emit(1);
            for (int code = 2; code < 10; ++code) {
                emit(code);
            }
            emit(1);
            std::exit(0);
        },
        testing::ExitedWithCode(0), testing::EndsWith("lyr: error 8\nlyr: error 9\nlyr: error 1\n"));
}

TEST_F(LyrErrorTest, listeners_hear_every_one_of_equal_errors) {
    Listener first(words, "first", false);
    for (int i = 0; i < 3; ++i) {
        emit(5);
    }
    EXPECT_EQ(words, (Words{"first 5", "last 5", "first 5", "last 5", "first 5", "last 5"}));
}
