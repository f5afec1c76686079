#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrReadOnlyProxyExtension.h>

#include <gtest/gtest.h>

// Properties that do not give or take a value, and what is left of an operation on them: nothing.

using namespace core_test;

namespace {

/** A single value that can be made to refuse. */
template <class Base>
class Refusing : public Base {
public:
    using T = typename Base::ValueType;
    bool unreadable = false;
    bool unwritable = false;
    unsigned int checkData(const T&, bool) const override { return refuses ? 0 : 1; }
    bool refuses = false;

protected:
    bool readStored(T& out) const override { return !unreadable && Base::readStored(out); }
    bool writeStored(const T& value) override { return !unwritable && Base::writeStored(value); }
};

/** A list that can be made not to give its items, or not even their number. */
template <class Base>
class Hidden : public Base {
public:
    using T = typename Base::ValueType;
    bool hidesItems = false;
    bool hidesSize = false;
    bool getArrayItems(long long first, long long last, T* out) const override {
        return !hidesItems && Base::getArrayItems(first, last, out);
    }
    bool getArrayIndexRange(long long& first, long long& last) const override {
        return !hidesSize && Base::getArrayIndexRange(first, last);
    }
};

template <class T>
class Mirror : public LyrSingleValuePropertyExtensionIF<T> {
public:
    using LyrSingleValuePropertyExtensionIF<T>::readBehind;
    using LyrSingleValuePropertyExtensionIF<T>::writeBehind;
    using LyrSingleValuePropertyExtensionIF<T>::storeSilently;
};

class Proxy : public LyrReadOnlyProxyExtensionIF<float> {};

struct ErrorCount : LyrError::Listener {
    int count = 0;
    bool errorEmitted(const LyrError::Message&) override {
        ++count;
        return true;
    }
};

}  // namespace

TEST(LyrPropertyRefusal, a_value_that_cannot_be_read_is_not_copied_and_has_its_fallback) {
    Refusing<Single<float>> source;
    Single<float> target;
    source.setValue(2.0f);
    EXPECT_TRUE(target.copyValueFrom(source));
    source.setValue(3.0f);
    source.unreadable = true;
    EXPECT_FALSE(target.copyValueFrom(source));
    EXPECT_EQ(target.stored(), 2.0f);
    Held<> node;
    node->addProperty(9500, &source);
    EXPECT_EQ(lyrGetValue(node.get(), 9500, 7.0f), 7.0f);
    source.unreadable = false;
    EXPECT_EQ(lyrGetValue(node.get(), 9500, 7.0f), 3.0f);
    node->removeProperty(9500);
}

TEST(LyrPropertyRefusal, a_link_that_cannot_be_read_or_is_refused_changes_nothing) {
    Held<> first;
    Held<> second;
    Refusing<LyrObjectSoftLinkOP> source;
    Refusing<LyrObjectSoftLinkOP> target;
    source.setValue(linkTo(first.get()));
    source.unreadable = true;
    EXPECT_FALSE(target.copyValueFrom(source));
    source.unreadable = false;
    EXPECT_TRUE(target.copyValueFrom(source));
    EXPECT_EQ(target.getTarget(), first.get());

    target.refuses = true;
    EXPECT_FALSE(target.setValue(linkTo(second.get())));
    EXPECT_EQ(target.getTarget(), first.get());
    const auto state = target.takeState();
    target.refuses = false;
    ASSERT_TRUE(target.setValue(linkTo(second.get())));
    target.refuses = true;
    EXPECT_FALSE(target.restoreState(*state));
    EXPECT_EQ(target.getTarget(), second.get());
    target.refuses = false;
    EXPECT_TRUE(target.restoreState(*state));
    EXPECT_EQ(target.getTarget(), first.get());
}

TEST(LyrPropertyRefusal, a_read_only_link_is_neither_reset_nor_restored) {
    Held<> first;
    Held<> second;
    LyrObjectSoftLinkOP link;
    link.setValue(linkTo(first.get()));
    const auto state = link.takeState();
    link.setValue(linkTo(second.get()));
    link.setReadOnly(true);
    EXPECT_FALSE(link.resetData());
    EXPECT_FALSE(link.restoreState(*state));
    EXPECT_EQ(link.getTarget(), second.get());
    link.setReadOnly(false);
    EXPECT_TRUE(link.resetData());
    EXPECT_EQ(link.getTarget(), nullptr);
}

TEST(LyrPropertyRefusal, a_read_only_list_of_links_is_neither_shortened_nor_reset_nor_restored) {
    Held<> first;
    Held<> second;
    LyrObjectSoftLinkListOP list;
    const LyrObjectLink links[] = {linkTo(first.get()), linkTo(second.get())};
    ASSERT_TRUE(list.initArray(0, 0, links));
    const auto state = list.takeState();
    ASSERT_TRUE(list.initArray(0, 1, links));
    list.setReadOnly(true);
    EXPECT_FALSE(list.removeArrayItems(0, 0));
    EXPECT_FALSE(list.resetData());
    EXPECT_FALSE(list.restoreState(*state));
    EXPECT_EQ(list.getArraySize(), 2);
    LyrObjectLink one;
    EXPECT_TRUE(list.getArrayItems(1, 1, &one));
    EXPECT_EQ(one.getLink(), second.get());
    list.setReadOnly(false);
    EXPECT_TRUE(list.restoreState(*state));
    EXPECT_EQ(list.getArraySize(), 1);
}

TEST(LyrPropertyRefusal, a_lock_on_links_is_given_back_by_its_own_pointer_only) {
    Held<> node;
    LyrObjectSoftLinkListOP list;
    const LyrObjectLink link = linkTo(node.get());
    ASSERT_TRUE(list.initArray(0, 0, &link));
    ErrorCount errors;
    const LyrObjectLink* items = list.lockArrayPtr();
    list.unlockArrayPtr(&link);
    EXPECT_FALSE(list.resetData());
    EXPECT_EQ(errors.count, 1);
    list.unlockArrayPtr(items);
    EXPECT_TRUE(list.resetData());
}

TEST(LyrPropertyRefusal, lists_that_hide_their_items_are_not_copied) {
    Held<> node;
    const LyrObjectLink link = linkTo(node.get());
    Hidden<LyrObjectSoftLinkListOP> source;
    LyrObjectSoftLinkListOP target;
    ASSERT_TRUE(source.initArray(0, 0, &link));
    source.hidesItems = true;
    EXPECT_FALSE(target.copyValueFrom(source));
    EXPECT_EQ(target.getArraySize(), 0);
    source.hidesItems = false;
    EXPECT_TRUE(target.copyValueFrom(source));
    EXPECT_EQ(target.getArraySize(), 1);
    source.hidesSize = true;
    EXPECT_EQ(source.getArraySize(), 0);
}

TEST(LyrPropertyRefusal, a_cache_is_not_stored_into_a_list_that_is_being_read) {
    Held<> node;
    const float numbers[] = {1.0f, 2.0f};
    node->numbers.initArray(0, 1, numbers);
    LyrValueArrayOPCache<float> cache;
    ASSERT_TRUE(cache.load(node.get(), NUMBERS));
    cache.items().push_back(3.0f);
    ErrorCount errors;
    const float* items = node->numbers.lockArrayPtr();
    EXPECT_FALSE(cache.store(node.get(), NUMBERS));
    EXPECT_EQ(errors.count, 1);
    node->numbers.unlockArrayPtr(items);
    EXPECT_TRUE(cache.store(node.get(), NUMBERS));
    EXPECT_EQ(node->numbers.getArraySize(), 3);
}

TEST(LyrPropertyRefusal, a_read_only_list_is_not_restored) {
    List<float> list;
    const float numbers[] = {1.0f, 2.0f};
    list.initArray(0, 1, numbers);
    const auto state = list.takeState();
    list.initArray(0, -1, nullptr);
    list.setReadOnly(true);
    EXPECT_FALSE(list.restoreState(*state));
    EXPECT_EQ(list.getArraySize(), 0);
}

TEST(LyrPropertyRefusal, an_extension_without_property_neither_reads_nor_writes_nor_stores) {
    Mirror<float> mirror;
    float value = 5.0f;
    EXPECT_FALSE(mirror.readBehind(value));
    EXPECT_FALSE(mirror.writeBehind(6.0f));
    EXPECT_FALSE(mirror.storeSilently(6.0f));
    EXPECT_EQ(value, 5.0f);
}

TEST(LyrPropertyRefusal, an_extension_passes_on_what_the_property_refuses) {
    Refusing<Single<float>> property;
    Mirror<float> mirror;
    ASSERT_TRUE(property.addPropertyExtension(&mirror));
    float value = 5.0f;
    property.unreadable = property.unwritable = true;
    EXPECT_FALSE(mirror.readBehind(value));
    EXPECT_FALSE(mirror.writeBehind(6.0f));
    property.unreadable = property.unwritable = false;
    EXPECT_TRUE(mirror.writeBehind(6.0f));
    EXPECT_TRUE(mirror.readBehind(value));
    EXPECT_EQ(value, 6.0f);
    property.removePropertyExtension(&mirror);
}

TEST(LyrPropertyRefusal, a_link_stored_silently_leads_to_living_objects_only) {
    Held<> node;
    LyrObjectSoftLinkOP link;
    Mirror<LyrObjectLink> mirror;
    ASSERT_TRUE(link.addPropertyExtension(&mirror));
    EXPECT_TRUE(mirror.storeSilently(linkTo(node.get())));
    EXPECT_EQ(link.getTarget(), node.get());
    ErrorCount errors;
    bool stored = true;
    {
        Held<> dying;
        dying->onDestroyed = [&, object = dying.get()] { stored = mirror.storeSilently(linkTo(object)); };
    }
    EXPECT_FALSE(stored);
    EXPECT_EQ(errors.count, 1);
    EXPECT_EQ(link.getTarget(), node.get());
    link.removePropertyExtension(&mirror);
}

TEST(LyrPropertyRefusal, a_proxy_that_hangs_elsewhere_already_is_not_moved_and_keeps_its_last_value) {
    Held<> source;
    Refusing<Single<float>> mirrored;
    Single<float> shown;
    mirrored.setValue(4.0f);
    source->addProperty(9500, &mirrored);
    Proxy proxy;
    bool ok = false;
    EXPECT_NE(proxy.requestProperty(source.get(), 9500, &ok), nullptr);
    ASSERT_TRUE(shown.addPropertyExtension(&proxy));
    float value = 0.0f;
    EXPECT_TRUE(shown.getValue(value));
    EXPECT_EQ(value, 4.0f);
    mirrored.setValue(5.0f);
    mirrored.unreadable = true;
    EXPECT_TRUE(shown.getValue(value));
    EXPECT_EQ(value, 4.0f);
    mirrored.unreadable = false;
    EXPECT_TRUE(shown.getValue(value));
    EXPECT_EQ(value, 5.0f);
    shown.removePropertyExtension(&proxy);
    source->removeProperty(9500);
}

TEST(LyrPropertyRefusal, a_proxy_hears_of_no_other_sender_than_its_source) {
    Held<> source;
    Held<> child;
    Single<float> shown;
    Proxy proxy;
    source->parented.setValue(linkTo(child.get()));
    Held<> owner;
    owner->addProperty(9500, &shown);
    ASSERT_TRUE(shown.addPropertyExtension(&proxy));
    proxy.requestProperty(source.get(), WEIGHT, nullptr);
    int told = 0;
    Held<> listener;
    listener->onMessage = [&](LyrIOC::Message&) { ++told; };
    listener->softFriend.setValue(linkTo(owner.get()));
    // The child's news comes through the source, but is not the source's own.
    child->weight.setValue(1.0f);
    EXPECT_EQ(told, 0);
    source->weight.setValue(1.0f);
    EXPECT_EQ(told, 1);
    shown.removePropertyExtension(&proxy);
    owner->removeProperty(9500);
}
