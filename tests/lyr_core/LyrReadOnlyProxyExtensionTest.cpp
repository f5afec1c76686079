#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrReadOnlyProxyExtension.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace core_test;

namespace {

/** Shows the title of its object in capitals. */
class Shouting : public LyrReadOnlyProxyExtensionIF<const char*> {
public:
    int refreshed = 0;
    bool works = true;

protected:
    bool refresh(const char*& value) override {
        ++refreshed;
        mText = lyrGetValue<const char*>(getProperty()->getObject(), TITLE, "");
        for (char& letter : mText) {
            letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
        }
        value = mText.c_str();
        return works;
    }

private:
    std::string mText;
};

class LyrReadOnlyProxyExtension : public testing::Test {
protected:
    LyrReadOnlyProxyExtension() : handle(&ear, shown.get()) { shown->weight.addPropertyExtension(&proxy); }
    float value() const { return lyrGetValue(shown.get(), WEIGHT, -1.0f); }

    Held<> source;
    Held<> shown;
    LyrReadOnlyProxyExtensionIF<float> proxy;
    Ear ear;
    LyrObjectIOCPtr handle;
};

}  // namespace

TEST_F(LyrReadOnlyProxyExtension, shows_the_value_of_another_object) {
    source->weight.setValue(5.0f);
    bool ok = false;
    EXPECT_EQ(proxy.requestProperty(source.get(), WEIGHT, &ok), &source->weight);
    EXPECT_TRUE(ok);
    EXPECT_EQ(value(), 5.0f);
    source->weight.setValue(6.0f);
    EXPECT_EQ(value(), 6.0f);
}

TEST_F(LyrReadOnlyProxyExtension, refuses_writes) {
    EXPECT_FALSE(lyrSetValue(shown.get(), WEIGHT, 1.0f));
    EXPECT_FALSE(shown->weight.resetData());
    EXPECT_EQ(value(), 0.0f);
    EXPECT_TRUE(ear.heard.empty());
}

TEST_F(LyrReadOnlyProxyExtension, tells_that_its_own_object_has_changed_when_the_other_did) {
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    const auto stamp = shown->getModificationTimestamp();
    source->weight.setValue(6.0f);
    ASSERT_EQ(ear.heard.size(), 1u);
    EXPECT_EQ(ear.heard[0].initialSender, shown.get());
    EXPECT_EQ(ear.heard[0].property, WEIGHT);
    EXPECT_GT(shown->getModificationTimestamp(), stamp);
    source->title.setValue("other");
    EXPECT_EQ(ear.heard.size(), 1u);
}

TEST_F(LyrReadOnlyProxyExtension, tells_nothing_for_a_mere_look) {
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    source->weight.setValue(6.0f);
    ear.heard.clear();
    value();
    value();
    EXPECT_TRUE(ear.heard.empty());
}

TEST_F(LyrReadOnlyProxyExtension, finds_nothing_to_show_where_there_is_no_such_property) {
    bool ok = true;
    EXPECT_EQ(proxy.requestProperty(source.get(), TITLE, &ok), nullptr);
    EXPECT_FALSE(ok);
    ok = true;
    EXPECT_EQ(proxy.requestProperty(source.get(), 12345, &ok), nullptr);
    EXPECT_FALSE(ok);
    ok = true;
    EXPECT_EQ(proxy.requestProperty(nullptr, WEIGHT, &ok), nullptr);
    EXPECT_FALSE(ok);
    source->weight.setValue(3.0f);
    EXPECT_EQ(value(), 0.0f);
    EXPECT_TRUE(ear.heard.empty());
}

TEST_F(LyrReadOnlyProxyExtension, keeps_the_last_value_when_it_is_disconnected) {
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    source->weight.setValue(5.0f);
    EXPECT_EQ(value(), 5.0f);
    ear.heard.clear();
    proxy.disconnect();
    source->weight.setValue(6.0f);
    EXPECT_EQ(value(), 5.0f);
    EXPECT_TRUE(ear.heard.empty());
    EXPECT_FALSE(lyrSetValue(shown.get(), WEIGHT, 1.0f));
}

TEST_F(LyrReadOnlyProxyExtension, keeps_the_last_value_when_the_other_object_dies_and_does_not_keep_that_alive) {
    bool gone = false;
    source->onDestroyed = [&] { gone = true; };
    source->weight.setValue(5.0f);
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    EXPECT_EQ(value(), 5.0f);
    source.drop();
    EXPECT_TRUE(gone);
    EXPECT_EQ(value(), 5.0f);
}

TEST_F(LyrReadOnlyProxyExtension, shows_the_object_that_it_was_given_last) {
    const Held<> second;
    source->weight.setValue(1.0f);
    second->weight.setValue(2.0f);
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    proxy.requestProperty(second.get(), WEIGHT, nullptr);
    EXPECT_EQ(value(), 2.0f);
    ear.heard.clear();
    source->weight.setValue(3.0f);
    EXPECT_TRUE(ear.heard.empty());
    second->weight.setValue(4.0f);
    EXPECT_EQ(ear.heard.size(), 1u);
}

TEST_F(LyrReadOnlyProxyExtension, is_quiet_and_gives_the_last_value_while_it_is_locked) {
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    source->weight.setValue(5.0f);
    EXPECT_EQ(value(), 5.0f);
    ear.heard.clear();
    proxy.lock();
    proxy.lock();
    source->weight.setValue(6.0f);
    proxy.invalidate();
    EXPECT_EQ(value(), 5.0f);
    proxy.unlock();
    EXPECT_EQ(value(), 5.0f);
    proxy.unlock();
    EXPECT_EQ(value(), 6.0f);
    EXPECT_TRUE(ear.heard.empty());
    proxy.unlock();  // one too many
    proxy.lock();
    source->weight.setValue(7.0f);
    EXPECT_EQ(value(), 6.0f);
    proxy.unlock();
}

TEST_F(LyrReadOnlyProxyExtension, makes_its_property_a_computed_one_while_it_is_attached) {
    EXPECT_TRUE(shown->weight.isComputed());
    shown->weight.removePropertyExtension(&proxy);
    EXPECT_FALSE(shown->weight.isComputed());
    {
        LyrReadOnlyProxyExtensionIF<float> brief;
        shown->weight.addPropertyExtension(&brief);
        EXPECT_TRUE(shown->weight.isComputed());
    }
    EXPECT_FALSE(shown->weight.isComputed());
    EXPECT_EQ(shown->weight.firstExtension(), nullptr);
    EXPECT_TRUE(lyrSetValue(shown.get(), WEIGHT, 1.0f));
}

TEST_F(LyrReadOnlyProxyExtension, is_left_out_when_its_object_is_copied) {
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    source->weight.setValue(5.0f);
    const Held<> other;
    other->weight.setValue(1.0f);
    EXPECT_TRUE(shown->copyFrom(*other));
    EXPECT_EQ(value(), 5.0f);
}

TEST_F(LyrReadOnlyProxyExtension, says_only_when_asked_that_it_shows_another_value) {
    proxy.invalidate();
    EXPECT_EQ(ear.properties(), std::vector<int>{WEIGHT});
    shown->weight.removePropertyExtension(&proxy);
    proxy.invalidate();
    EXPECT_EQ(ear.heard.size(), 1u);
}

TEST_F(LyrReadOnlyProxyExtension, computes_what_it_shows_each_time_it_is_read) {
    Single<const char*> loud;
    Shouting shouting;
    const Held<> node;
    ASSERT_TRUE(node->addProperty(Lyr::Description, &loud));
    loud.addPropertyExtension(&shouting);
    node->title.setValue("wall");
    EXPECT_STREQ(lyrGetValue<const char*>(node.get(), Lyr::Description, ""), "WALL");
    node->title.setValue("pore");
    EXPECT_STREQ(lyrGetValue<const char*>(node.get(), Lyr::Description, ""), "PORE");
    EXPECT_EQ(shouting.refreshed, 2);
    shouting.works = false;
    node->title.setValue("crack");
    EXPECT_STREQ(lyrGetValue<const char*>(node.get(), Lyr::Description, ""), "PORE");
    node->removeProperty(Lyr::Description);
}

TEST_F(LyrReadOnlyProxyExtension, may_listen_to_the_object_that_it_belongs_to) {
    auto node = std::make_unique<Held<>>();
    bool gone = false;
    (*node)->onDestroyed = [&] { gone = true; };
    auto* loud = new Single<const char*>;
    (*node)->addProperty(Lyr::Description, loud, true);
    auto* shouting = new Shouting;
    shouting->setAutoDelete(true);
    loud->addPropertyExtension(shouting);
    bool ok = false;
    shouting->requestProperty(node->get(), TITLE, &ok);
    EXPECT_TRUE(ok);
    Ear listener;
    LyrObjectIOCPtr listening(&listener, node->get());
    (*node)->title.setValue("wall");
    EXPECT_EQ(listener.properties(), (std::vector<int>{Lyr::Description, TITLE}));
    listening = nullptr;
    node.reset();
    EXPECT_TRUE(gone);
}

TEST_F(LyrReadOnlyProxyExtension, does_not_tell_for_ever_when_two_show_each_other) {
    LyrReadOnlyProxyExtensionIF<float> back;
    source->weight.addPropertyExtension(&back);
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    back.requestProperty(shown.get(), WEIGHT, nullptr);
    proxy.invalidate();
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_EQ(value(), 0.0f);
}

TEST_F(LyrReadOnlyProxyExtension, may_be_destroyed_by_whoever_hears_of_it) {
    auto brief = std::make_unique<LyrReadOnlyProxyExtensionIF<float>>();
    shown->weight.removePropertyExtension(&proxy);
    shown->weight.addPropertyExtension(brief.get());
    ear.onMessage = [&](auto&) { brief.reset(); };
    brief->invalidate();
    EXPECT_FALSE(brief);
    EXPECT_EQ(ear.heard.size(), 1u);
}
