#include "AnalysisTools.h"

#include <analysis/LibraryInit.h>
#include <analysis/LyrLayerAnnotationHandler.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationContainer.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_opengl/LyrCamera.h>
#include <lyr_opengl/LyrSceneGraphObjectNode.h>

namespace {

using Entries = LyrValueList<LyrColorLookupTableRenderDriver::Entry>;
using LyrSceneGraph::SceneGraphObjectNode;

/** A handler, and what a view with one layer would show. */
class Handler : public ::testing::Test, protected LayerOfValues {
protected:
    Handler() {
        lyrSetValue(camera.get(), Lyr::DotsPerInch, LyrVector2<float>(192.0f, 192.0f));
        root().appendChild(layerNode());
    }
    SceneGraphObjectNode& root() { return static_cast<SceneGraphObjectNode&>(*scene); }
    SceneGraphObjectNode* layerNode() { return static_cast<SceneGraphObjectNode*>(shown.get()); }

    bool update(Entries& entries, LyrObject* where, LyrTimestamp since = LyrTimestamp::getCurrentTimestamp()) {
        return handler().update(nullptr, &root(), entries, where, since);
    }
    bool updateOnce(LyrTimestamp since = LyrTimestamp::getCurrentTimestamp()) {
        Entries entries;
        return update(entries, container.get(), since);
    }
    static LyrObject* linkOf(const LyrColorLookupTableRenderDriver::Entry& entry, Lyrenum id) {
        return lyrGetValue(entry.annotation.get(), id, LyrObjectLink()).getLink();
    }
    LyrObjectPtr addLayerOfTheSameTable() {
        LyrObjectPtr second(LyrValueLayer::create(static_cast<LyrVolumeObject*>(document.get())));
        lyrSetValue(second.get(), Lyr::ColorLookupTable, LyrObjectLink(layer().table(), nullptr, -1));
        root().appendChild(new SceneGraphObjectNode(second.get()));
        return second;
    }
    LyrLayerAnnotationHandler& handler() { return static_cast<LyrLayerAnnotationHandler&>(*handlerObject); }

    LyrObjectPtr camera{new LyrCamera};
    LyrObjectPtr scene{new SceneGraphObjectNode(camera.get())};
    LyrObjectPtr shown{new SceneGraphObjectNode(object.get())};
    LyrObjectPtr container{new LyrColorLookupTableAnnotationContainer};
    LyrObjectPtr handlerObject{new LyrLayerAnnotationHandler};
};

int handlersOf(const LyrObject* renderObject) {
    LyrValueArrayOPCache<LyrObjectLink> list;
    list.load(renderObject, Lyr::AnnotationHandlerList);
    int count = 0;
    for (const LyrObjectLink& link : list.items()) {
        count += link.linkIsOfType("LyrLayerAnnotationHandler") ? 1 : 0;
    }
    return count;
}

}  // namespace

TEST_F(Handler, shows_the_layers_table_with_its_settings_at_the_cameras_resolution) {
    Entries entries;
    update(entries, container.get());
    ASSERT_EQ(entries.size(), 1);
    EXPECT_TRUE(entries[0].visible);
    const LyrObject* annotation = entries[0].annotation.get();
    ASSERT_TRUE(dynamic_cast<const LyqColorLookupTableAnnotation*>(annotation));
    EXPECT_EQ(lyrGetValue(annotation, Lyr::Object, LyrObjectLink()).getLink(), layer().table());
    EXPECT_EQ(lyrGetValue(annotation, Lyr::ColorLookupTableRenderSettings, LyrObjectLink()).getLink(),
              layer().renderSettings());
    EXPECT_EQ(lyrGetValue(annotation, Lyr::DotsPerInch, LyrVector2<float>()), LyrVector2<float>(192.0f, 192.0f));
}

TEST_F(Handler, keeps_the_annotation_of_a_table_and_container) {
    Entries first, second, elsewhere;
    update(first, container.get());
    update(second, container.get());
    ASSERT_EQ(second.size(), 1);
    EXPECT_EQ(first[0].annotation, second[0].annotation);
    const LyrObjectPtr other(new LyrColorLookupTableAnnotationContainer);
    update(elsewhere, other.get());
    ASSERT_EQ(elsewhere.size(), 1);
    EXPECT_FALSE(first[0].annotation == elsewhere[0].annotation);
}

TEST_F(Handler, appends_behind_the_entries_of_others) {
    Entries entries;
    LyrColorLookupTableRenderDriver::Entry other;
    entries.append(other);
    update(entries, container.get());
    ASSERT_EQ(entries.size(), 2);
    EXPECT_FALSE(entries[0].annotation);
    EXPECT_TRUE(entries[1].annotation);
}

TEST_F(Handler, a_legend_is_visible_while_both_switches_are_on) {
    Entries entries;
    lyrSetValue<Lyrenum>(layer().renderSettings(), Lyr::Rendering, 0);
    update(entries, container.get());
    ASSERT_EQ(entries.size(), 1);
    EXPECT_FALSE(entries[0].visible);
    lyrSetValue<Lyrenum>(layer().renderSettings(), Lyr::Rendering, 1);
    lyrSetValue<Lyrenum>(container.get(), Lyr::Rendering, 0);
    entries.clear();
    update(entries, container.get());
    ASSERT_EQ(entries.size(), 1);
    EXPECT_FALSE(entries[0].visible);
}

TEST_F(Handler, a_layer_that_is_not_rendered_has_no_legend) {
    layerNode()->setRenderingStateIdentifier(0);
    Entries entries;
    update(entries, container.get());
    EXPECT_TRUE(entries.isEmpty());
}

TEST_F(Handler, without_a_container_or_a_scene_nothing_is_appended) {
    Entries entries;
    EXPECT_FALSE(update(entries, nullptr));
    EXPECT_FALSE(handler().update(nullptr, nullptr, entries, container.get(), {}));
    EXPECT_TRUE(entries.isEmpty());
}

TEST_F(Handler, reports_changes_of_table_section_and_settings_after_the_last_update) {
    Entries entries;
    EXPECT_TRUE(update(entries, container.get(), LyrTimestamp()));
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    EXPECT_FALSE(update(entries, container.get(), before));
    LyrValueArrayOPCache<LyrObjectLink> sections;
    ASSERT_TRUE(sections.load(layer().table(), Lyr::SectionList));
    LyrValueArrayOPCache<LyrVector2<float>> blue;
    ASSERT_TRUE(blue.load(sections.items()[2].getLink(), Lyr::PointListBlue));
    blue.items()[0].y = 0.125f;
    ASSERT_TRUE(blue.store(sections.items()[2].getLink(), Lyr::PointListBlue));
    EXPECT_TRUE(update(entries, container.get(), before));
    const LyrTimestamp later = LyrTimestamp::getCurrentTimestamp();
    EXPECT_FALSE(update(entries, container.get(), later));
    lyrSetValue<Lyrenum>(layer().renderSettings(), Lyr::Position, Lyr::Right);
    EXPECT_TRUE(update(entries, container.get(), later));
}

TEST_F(Handler, reports_an_edit_of_the_table_itself) {
    updateOnce();
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    EXPECT_FALSE(updateOnce(before));
    lyrSetValue<Lyrenum>(layer().table(), Lyr::Quantity, Lyr::Length);
    EXPECT_TRUE(updateOnce(before));
    EXPECT_FALSE(updateOnce(LyrTimestamp::getCurrentTimestamp()));
}

TEST_F(Handler, reports_another_table_and_other_settings_and_shows_them) {
    updateOnce();
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    const LyrObjectRefPtr settings("LyrColorLookupTableRenderSettings", Lyr::DocumentScope);
    // Both are older than the update, so that nothing but the link tells of them.
    LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    ASSERT_FALSE(updateOnce(before));
    lyrSetValue(&layer(), Lyr::ColorLookupTableRenderSettings, LyrObjectLink(settings.get(), nullptr, -1));
    EXPECT_TRUE(updateOnce(before));
    before = LyrTimestamp::getCurrentTimestamp();
    EXPECT_FALSE(updateOnce(before));
    lyrSetValue(&layer(), Lyr::ColorLookupTable, LyrObjectLink(table.get(), nullptr, -1));
    Entries entries;
    EXPECT_TRUE(update(entries, container.get(), before));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(linkOf(entries[0], Lyr::Object), table.get());
    EXPECT_EQ(linkOf(entries[0], Lyr::ColorLookupTableRenderSettings), settings.get());
    EXPECT_FALSE(updateOnce());
}

TEST_F(Handler, reports_another_resolution_of_the_camera_and_passes_it_on) {
    updateOnce();
    EXPECT_FALSE(updateOnce());
    lyrSetValue(camera.get(), Lyr::DotsPerInch, LyrVector2<float>(96.0f, 96.0f));
    Entries entries;
    EXPECT_TRUE(update(entries, container.get()));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(lyrGetValue(entries[0].annotation.get(), Lyr::DotsPerInch, LyrVector2<float>()),
              LyrVector2<float>(96.0f, 96.0f));
    EXPECT_FALSE(updateOnce());
}

TEST_F(Handler, shows_one_legend_for_two_layers_with_the_same_table) {
    addLayerOfTheSameTable();
    Entries entries;
    EXPECT_TRUE(update(entries, container.get()));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(linkOf(entries[0], Lyr::Object), layer().table());
    EXPECT_EQ(linkOf(entries[0], Lyr::ColorLookupTableRenderSettings), layer().renderSettings());
    const LyrTimestamp written = entries[0].annotation->getModificationTimestamp();
    for (int i = 0; i < 3; ++i) {
        Entries again;
        EXPECT_FALSE(update(again, container.get()));
        ASSERT_EQ(again.size(), 1);
        EXPECT_EQ(again[0].annotation, entries[0].annotation);
    }
    EXPECT_EQ(entries[0].annotation->getModificationTimestamp(), written);
}

TEST_F(Handler, a_shared_legend_has_the_settings_of_the_first_layer_that_shows_it) {
    const LyrObjectPtr second = addLayerOfTheSameTable();
    const LyrObject* settings = static_cast<LyrValueLayer&>(*second).renderSettings();
    ASSERT_NE(settings, layer().renderSettings());
    updateOnce();
    lyrSetValue<Lyrenum>(layer().renderSettings(), Lyr::Rendering, 0);
    Entries entries;
    EXPECT_TRUE(update(entries, container.get()));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_TRUE(entries[0].visible);
    EXPECT_EQ(linkOf(entries[0], Lyr::ColorLookupTableRenderSettings), settings);
    EXPECT_FALSE(updateOnce());
}

TEST_F(Handler, render_objects_of_present_and_future_have_one_while_the_library_is_in_use) {
    const LyrObjectRefPtr present("LyrColorLookupTableRenderObject", Lyr::TransientScope);
    ASSERT_TRUE(present);
    EXPECT_EQ(handlersOf(present.get()), 0);
    LYQANALYSIS::LibraryInit::init();
    LYQANALYSIS::LibraryInit::init();
    const LyrObjectRefPtr future("LyrColorLookupTableRenderObject", Lyr::TransientScope);
    EXPECT_EQ(handlersOf(present.get()), 1);
    EXPECT_EQ(handlersOf(future.get()), 1);
    LYQANALYSIS::LibraryInit::cleanup();
    EXPECT_EQ(handlersOf(present.get()), 1);
    LYQANALYSIS::LibraryInit::cleanup();
    EXPECT_EQ(handlersOf(present.get()), 0);
    EXPECT_EQ(handlersOf(future.get()), 0);
}
