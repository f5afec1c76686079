#include <lyr_core/LyrReadOnlyProxyExtension.h>
#include <lyr_core/LyrSingleValueProperty.h>

#include <gtest/gtest.h>

namespace {

using FloatOP = LyrSingleValueOP<LyrSingleValuePropertyIF<float>>;

/** Shows 7 whatever its property holds. */
class Seven : public LyrReadOnlyProxyExtensionIF<float> {
public:
    explicit Seven(int* ends = nullptr) : mEnds(ends) {}
    ~Seven() override {
        if (mEnds) {
            ++*mEnds;
        }
    }

protected:
    bool refresh(float& value) override {
        value = 7.0f;
        return true;
    }

private:
    int* mEnds;
};

float valueOf(const FloatOP& property) {
    float value = 0.0f;
    property.getValue(value);
    return value;
}

unsigned int markOf(const FloatOP& property) {
    return property.getFlags(LyrFlags::COMPATIBILITY_SAVE);
}

}  // namespace

TEST(LyrReadOnlyProxyMove, a_moved_proxy_shows_its_value_at_the_new_property_only) {
    FloatOP first;
    FloatOP second;
    first.setValue(1.0f);
    second.setValue(2.0f);
    Seven proxy;
    EXPECT_TRUE(proxy.moveTo(&first));
    EXPECT_EQ(valueOf(first), 7.0f);
    EXPECT_TRUE(first.isComputed());
    EXPECT_TRUE(proxy.moveTo(&second));
    EXPECT_EQ(proxy.getProperty(), &second);
    EXPECT_EQ(first.firstExtension(), nullptr);
    EXPECT_FALSE(first.isComputed());
    EXPECT_TRUE(first.setValue(3.0f));
    EXPECT_EQ(valueOf(first), 3.0f);
    EXPECT_EQ(valueOf(second), 7.0f);
    EXPECT_FALSE(second.setValue(3.0f));
    EXPECT_TRUE(proxy.moveTo(&second));
    EXPECT_TRUE(proxy.moveTo(nullptr));
    EXPECT_EQ(proxy.getProperty(), nullptr);
    EXPECT_EQ(second.firstExtension(), nullptr);
}

TEST(LyrReadOnlyProxyMove, a_move_never_deletes_and_auto_delete_comes_back_only_without_a_property) {
    int ends = 0;
    FloatOP first;
    FloatOP second;
    auto* proxy = new Seven(&ends);
    first.addPropertyExtension(proxy);
    proxy->setAutoDelete(true);
    EXPECT_TRUE(proxy->moveTo(&second));
    EXPECT_EQ(ends, 0);
    EXPECT_FALSE(proxy->isAutoDelete());
    proxy->setAutoDelete(true);
    EXPECT_TRUE(proxy->moveTo(nullptr));
    EXPECT_EQ(ends, 0);
    EXPECT_TRUE(proxy->isAutoDelete());
    delete proxy;
    EXPECT_EQ(ends, 1);
}

TEST(LyrReadOnlyProxyMove, a_proxy_kept_for_compatibility_takes_the_mark_along) {
    FloatOP first;
    FloatOP second;
    Seven proxy;
    proxy.setFlags(0x4000000, 0);
    proxy.moveTo(&first);
    EXPECT_EQ(markOf(first), 0x4000000u);
    proxy.moveTo(&second);
    EXPECT_EQ(markOf(first), 0u);
    EXPECT_EQ(markOf(second), 0x4000000u);
    proxy.moveTo(nullptr);
    EXPECT_EQ(markOf(second), 0u);
}

TEST(LyrReadOnlyProxyMove, a_proxy_without_the_mark_leaves_that_of_its_properties_alone) {
    FloatOP first;
    FloatOP second;
    first.setFlag("CompatibilitySave", true);
    Seven proxy;
    proxy.moveTo(&first);
    proxy.moveTo(&second);
    EXPECT_EQ(markOf(first), 0x4000000u);
    EXPECT_EQ(markOf(second), 0u);
}
