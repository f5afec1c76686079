#include "LayerForTests.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <limits>

TEST(LyqLayer, a_new_layer_is_rendered_and_opaque) {
    const LyrObjectPtr object(new LayerForTests);
    EXPECT_EQ(lyrGetValue<Lyrenum>(object.get(), Lyr::Rendering, -1), 1);
    EXPECT_EQ(lyrGetValue(object.get(), Lyr::Opacity, -1.0f), 1.0f);
    EXPECT_TRUE(object->getMetaClass().isOfType("LyqLayer"));
}

TEST(LyqLayer, it_keeps_what_it_shows_alive_and_links_it_as_its_object) {
    LyrObject* shown = new LyrObject;
    LyrObjectPtr object(new LayerForTests(false, shown));
    EXPECT_EQ(shown->getRefCount(), 1);
    EXPECT_EQ(lyrGetValue(object.get(), Lyr::Object, LyrObjectLink()).getLink(), shown);
    EXPECT_EQ(static_cast<LyqLayer&>(*object).shownObject(), shown);
}

TEST(LyqLayer, opacity_is_clamped_and_nan_refused) {
    const LyrObjectPtr object(new LayerForTests);
    auto& layer = static_cast<LyqLayer&>(*object);
    EXPECT_TRUE(layer.setOpacity(2.0f));
    EXPECT_EQ(layer.getOpacity(), 1.0f);
    EXPECT_TRUE(layer.setOpacity(-1.0f));
    EXPECT_EQ(layer.getOpacity(), 0.0f);
    EXPECT_FALSE(layer.setOpacity(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(layer.getOpacity(), 0.0f);
}

TEST(LyqLayer, a_change_is_stamped) {
    const LyrObjectPtr object(new LayerForTests);
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    EXPECT_TRUE(static_cast<LyqLayer&>(*object).setRendering(false));
    EXPECT_GT(object->getModificationTimestamp(), before);
    EXPECT_FALSE(static_cast<LyqLayer&>(*object).isRendering());
}
