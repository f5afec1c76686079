#include "LegendView.h"

#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqFrame.h>
#include <lys_core/LyrApplicationObject.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <limits>

using namespace legends;

namespace {

class RenderDriver : private ToolkitApplication, public testing::Test {
protected:
    void TearDown() override { LyqApplication::instance().displayUnits().setInchSystem(false); }
    std::vector<LyrObject*> listed() const { return objectsIn(view.container(), Lyrenum("AnnotationList", true)); }

    Errors errors;
    LegendView view;
    Legend a;
    Legend b;
};

/** An annotation of the host, of another kind. */
class Note : public LyqAnnotation {
public:
    class Frame : public LyqFrame {
    public:
        int paints = 0;

    private:
        void paintEvent(QPaintEvent*) override { ++paints; }
    };
    Note() : LyqAnnotation(nullptr, nullptr) {}
    LyqFrame* widget() const override { return const_cast<Frame*>(&mFrame); }
    RenderingModeEnum getRenderingMode() const override { return RenderedImage; }
    int paints() const { return mFrame.paints; }

private:
    Frame mFrame;
};

/** Counts messages, and those of properties whose change marks documents and presets as modified. */
struct MarkWatch : LyrIOC {
    bool iocCallback(Message& message) override {
        ++messages;
        const LyrObject* from = message.getInitialSender();
        const LyrProperty* property = from ? from->getProperty(message.getPropertyID()) : nullptr;
        marks += property && (property->getFlags() & 0x20000000u) != 0 ? 1 : 0;
        return LyrIOC::iocCallback(message);
    }
    int messages = 0;
    int marks = 0;
};

/** Counts those that live. */
class CountedDriver : public LyrColorLookupTableRenderDriver {
public:
    CountedDriver(LyrSceneGraph::ViewportObjectNode* at, LyrObject* plugin)
        : LyrColorLookupTableRenderDriver(at, plugin) {
        ++count;
    }
    ~CountedDriver() override { --count; }
    inline static int count = 0;
};

/** Opens what is protected. */
class OpenDriver : public LyrColorLookupTableRenderDriver {
public:
    using LyrColorLookupTableRenderDriver::LyrColorLookupTableRenderDriver;
    using LyrColorLookupTableRenderDriver::updateAnnotationList;
    using LyrColorLookupTableRenderDriver::updateEntryList;
    using LyrColorLookupTableRenderDriver::widgetToDevice;
};

}  // namespace

TEST_F(RenderDriver, entries_are_equal_when_annotation_visibility_and_centre_are) {
    const Entry entry{a.held, true, {3.0f, 4.0f, 0.5f}};
    EXPECT_TRUE(entry == (Entry{a.held, true, {3.0f, 4.0f, 0.5f}}));
    EXPECT_TRUE(entry != (Entry{b.held, true, {3.0f, 4.0f, 0.5f}}));
    EXPECT_TRUE(entry != (Entry{a.held, false, {3.0f, 4.0f, 0.5f}}));
    EXPECT_TRUE(entry != (Entry{a.held, true, {3.5f, 4.0f, 0.5f}}));
    constexpr float EPSILON = 1.1920929e-7f;
    EXPECT_TRUE((Entry{a.held, true, {0.0f, 0.0f, 0.5f}} == Entry{a.held, true, {EPSILON, 0.0f, 0.5f}}));
    EXPECT_TRUE((Entry{a.held, true, {0.0f, 0.0f, 0.5f}} != Entry{a.held, true, {0.0f, 2.0f * EPSILON, 0.5f}}));
}

TEST_F(RenderDriver, reports_its_first_update_and_then_nothing_while_nothing_changes) {
    view.shown = {a.entry(), b.entry()};
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    const LyrTimestamp container = view.container()->getModificationTimestamp();
    const LyrTimestamp annotation = a.held->getModificationTimestamp();
    const qint64 image = a.annotation().getImage().cacheKey();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(view.frame(), 0u);
    }
    EXPECT_EQ(view.container()->getModificationTimestamp(), container);
    EXPECT_EQ(a.held->getModificationTimestamp(), annotation);
    EXPECT_EQ(a.annotation().getImage().cacheKey(), image);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderDriver, reports_an_empty_view_once) {
    EXPECT_EQ(view.frame(), 5u);
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, settles_within_three_updates) {
    view.shown = {a.entry()};
    view.frame();
    view.frame();
    view.frame();
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, has_the_container_own_what_the_handlers_name) {
    view.shown = {b.entry(), a.entry(false)};
    view.frame();
    EXPECT_EQ(listed(), (std::vector<LyrObject*>{b.held.get(), a.held.get()}));
    EXPECT_TRUE(b.annotation().isVisible());
    EXPECT_FALSE(a.annotation().isVisible());
    EXPECT_NE(a.annotation().getGroup(), nullptr);
    view.shown = {a.entry()};
    view.frame();
    EXPECT_EQ(listed(), std::vector<LyrObject*>{a.held.get()});
    EXPECT_FALSE(b.annotation().isVisible());
}

TEST_F(RenderDriver, reports_a_change_of_count_annotation_visibility_and_centre) {
    view.shown = {a.entry()};
    view.settle();
    view.shown = {a.entry(), b.entry()};
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    view.shown = {a.entry(), b.entry(false)};
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    const Legend c;
    view.shown = {a.entry(), c.entry()};
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    lyrSetValue(a.settings.get(), Lyr::Position, Lyr::Right);
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    view.resize(800.0f, 620.0f);
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, takes_neither_order_nor_repetition_for_a_change) {
    view.shown = {a.entry(), a.entry(), b.entry()};
    view.settle();
    view.shown = {a.entry(), b.entry(), b.entry()};
    EXPECT_EQ(view.frame(), 0u);
    view.shown = {b.entry(), a.entry(), b.entry()};
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, redraws_when_a_handler_says_so_though_the_entries_are_the_same) {
    view.shown = {a.entry()};
    view.settle();
    view.reportsChange = true;
    EXPECT_EQ(view.frame(), 5u);
    view.reportsChange = false;
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, tells_handlers_when_the_view_was_last_updated) {
    std::vector<LyrTimestamp> asked;
    LyrObjectPtr handler(new Handler([&](Entries&, LyrObject*, LyrTimestamp since) {
        asked.push_back(since);
        return false;
    }));
    setList(view.renderer.get(), Lyr::AnnotationHandlerList, {handler.get()});
    view.frame();
    const LyrTimestamp first = view.driver().getUpdateTimestamp();
    view.cameraNode->setSuppressed(true);
    view.frame();
    view.cameraNode->setSuppressed(false);
    view.frame();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_TRUE(asked[0].isNull());
    EXPECT_EQ(asked[1], first);
    EXPECT_EQ(static_cast<Handler&>(*handler).scene, view.root);
}

TEST_F(RenderDriver, redraws_when_display_units_change) {
    view.shown = {a.entry()};
    view.settle();
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    EXPECT_EQ(view.frame(), 5u);
    view.settle();
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, finds_after_a_suppression_what_changed_meanwhile) {
    view.shown = {a.entry()};
    view.settle();
    view.cameraNode->setSuppressed(true);
    const int calls = view.handler->calls;
    LyqApplication::instance().displayUnits().setDisplayUnit(Lyr::Length, Lyr::Inch);
    EXPECT_TRUE(view.driver().init());
    EXPECT_EQ(view.frame(), 0u);
    EXPECT_EQ(view.handler->calls, calls);
    view.cameraNode->setSuppressed(false);
    EXPECT_EQ(view.frame(), 5u);
}

TEST_F(RenderDriver, adds_its_flags_to_those_of_others) {
    view.node->addUpdateFlags(8u);
    view.driver().init();
    EXPECT_EQ(view.node->getUpdateFlags(), 13u);
}

TEST_F(RenderDriver, reports_what_is_no_handler_and_passes_over_null) {
    const LyrObjectPtr wrong(new LyrObject);
    view.shown = {a.entry()};
    setList(view.renderer.get(), Lyr::AnnotationHandlerList, {nullptr, wrong.get(), view.handler});
    view.frame();
    EXPECT_EQ(errors.codes, std::vector<int>{WRONG_TYPE});
    EXPECT_EQ(listed(), std::vector<LyrObject*>{a.held.get()});
}

TEST_F(RenderDriver, asks_handlers_in_their_order_and_ors_what_they_say) {
    LyrObjectPtr first(new Handler([&](Entries& entries, LyrObject*, LyrTimestamp) {
        entries.append(b.entry());
        return true;
    }));
    view.shown = {a.entry()};
    setList(view.renderer.get(), Lyr::AnnotationHandlerList, {first.get(), view.handler});
    view.settle();
    EXPECT_EQ(listed(), (std::vector<LyrObject*>{b.held.get(), a.held.get()}));
    EXPECT_EQ(view.frame(), 5u);
    EXPECT_EQ(view.handler->calls, 4);
}

TEST_F(RenderDriver, shows_nothing_for_a_handler_of_the_base_class) {
    const LyrObjectRefPtr base("LyrColorLookupTableAnnotationHandler", Lyr::TransientScope);
    ASSERT_TRUE(base);
    setList(view.renderer.get(), Lyr::AnnotationHandlerList, {base.get()});
    view.frame();
    EXPECT_EQ(view.frame(), 0u);
    EXPECT_TRUE(listed().empty());
}

TEST_F(RenderDriver, leaves_a_wrong_object_out_and_shows_the_others) {
    const LyrObjectPtr wrong(new LyrObject);
    view.shown = {Entry{wrong, true, {}}, a.entry(), Entry{LyrObjectPtr(), true, {}}};
    view.frame();
    EXPECT_EQ(errors.codes, std::vector<int>{WRONG_TYPE});
    EXPECT_EQ(listed(), (std::vector<LyrObject*>{a.held.get(), nullptr}));
    EXPECT_TRUE(a.annotation().isVisible());
    view.settle();
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, keeps_other_annotations_of_the_host_where_they_stand) {
    auto* note = new Note;
    const LyrObjectPtr held(note);
    note->setFixedSize(QSize(30, 20));
    note->setPosition(QPoint(100, 50));
    view.shown = {Entry{held, true, {}}};
    view.settle();
    EXPECT_EQ(note->frameGeometry(), QRect(100, 50, 30, 20));
    EXPECT_EQ(listed(), std::vector<LyrObject*>{note});
    EXPECT_FALSE(errors.codes.empty());
    // It is drawn: left edge 100 of 800, right edge 130, top 50 of 600, bottom 70.
    const auto covered = view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS);
    EXPECT_NEAR(covered.first.x, -1.0f + 0.25f - 0.01f, 1e-6f);
    EXPECT_NEAR(covered.second.x, -1.0f + 0.325f + 0.01f, 1e-6f);
    EXPECT_NEAR(covered.second.y, 1.0f - 100.0f / 600.0f + 0.01f, 1e-6f);
    EXPECT_NEAR(covered.first.y, 1.0f - 140.0f / 600.0f - 0.01f, 1e-6f);
}

TEST_F(RenderDriver, has_the_images_of_other_annotations_ready_before_they_are_drawn) {
    auto* note = new Note;
    const LyrObjectPtr held(note);
    note->setFixedSize(QSize(30, 20));
    view.shown = {Entry{held, false, {}}};
    view.settle();
    EXPECT_EQ(note->paints(), 0);
    view.shown = {Entry{held, true, {}}};
    view.settle();
    EXPECT_EQ(note->paints(), 1);
    EXPECT_EQ(note->getImage().size(), QSize(30, 20));
    EXPECT_EQ(note->paints(), 1);
}

TEST_F(RenderDriver, shows_nothing_where_nobody_would_own_the_legends) {
    LyrObject* asked = view.container();
    view.view->removeProperty(Lyr::ColorLookupTableAnnotationContainer);
    LyrObjectPtr handler(new Handler([&](Entries& entries, LyrObject* container, LyrTimestamp) {
        asked = container;
        entries.append(a.entry());
        return false;
    }));
    setList(view.renderer.get(), Lyr::AnnotationHandlerList, {handler.get()});
    view.frame();
    EXPECT_EQ(asked, nullptr);
    EXPECT_FALSE(a.annotation().isVisible());
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS)));
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderDriver, notices_another_container_and_another_workspace_widget) {
    view.shown = {a.entry()};
    view.settle();
    const LyrObjectRefPtr other("LyrColorLookupTableAnnotationContainer", Lyr::TransientScope);
    lyrSetValue(view.view.get(), Lyr::ColorLookupTableAnnotationContainer, link(other.get()));
    EXPECT_EQ(view.frame(), 5u);
    EXPECT_EQ(view.frame(), 0u);
    const LyrObjectPtr camera(view.camera());
    view.view.reset();
    EXPECT_EQ(view.frame(), 5u);
    EXPECT_EQ(view.frame(), 0u);
}

TEST_F(RenderDriver, survives_a_handler_that_destroys_the_view_and_empties_the_list) {
    const LyrObjectPtr camera(view.camera());
    LyrObjectPtr handler(new Handler([&](Entries& entries, LyrObject*, LyrTimestamp) {
        view.view.reset();
        setList(view.renderer.get(), Lyr::AnnotationHandlerList, {});
        entries.append(a.entry());
        return false;
    }));
    LyrObject* const raw = handler.get();
    setList(view.renderer.get(), Lyr::AnnotationHandlerList, {raw, view.handler});
    handler = LyrObjectPtr();
    view.shown = {b.entry()};
    view.frame();
    EXPECT_EQ(view.handler->calls, 1);
    view.frame();
    EXPECT_EQ(view.handler->calls, 1);
}

TEST_F(RenderDriver, renders_an_image_only_when_its_widget_needs_it) {
    view.shown = {a.entry()};
    view.settle();
    const qint64 before = a.annotation().getImage().cacheKey();
    view.frame();
    EXPECT_EQ(a.annotation().getImage().cacheKey(), before);
    lyrSetValue(a.settings.get(), Lyr::HasOutline, Lyrenum(0));
    lyrSetValue(a.settings.get(), Lyr::HasOutline, Lyrenum(1));
    ASSERT_TRUE(a.annotation().lookupTableWidget()->needsUpdate());
    view.frame();
    EXPECT_NE(a.annotation().getImage().cacheKey(), before);
    EXPECT_FALSE(a.annotation().lookupTableWidget()->needsUpdate());
}

TEST_F(RenderDriver, has_an_image_ready_for_a_legend_without_a_table) {
    lyrSetValue(a.held.get(), Lyr::Object, LyrObjectLink());
    view.shown = {a.entry()};
    view.settle();
    const QSize size = a.annotation().frameGeometry().size();
    EXPECT_EQ(a.annotation().getImage().size(), size);
}

TEST_F(RenderDriver, neither_places_nor_covers_hidden_legends) {
    a.annotation().setPosition(QPoint(7, 9));
    a.annotation().setVisible(true);
    view.shown = {a.entry(false)};
    view.settle();
    EXPECT_FALSE(a.annotation().isVisible());
    EXPECT_EQ(a.annotation().frameGeometry().topLeft(), QPoint(7, 9));
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS)));
}

TEST_F(RenderDriver, covers_the_legends_in_the_overlay_pass_only) {
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS)));
    lyrSetValue(a.settings.get(), Lyr::Alignment, Lyr::Top);
    lyrSetValue(a.settings.get(), Lyr::Size, 0.5f);
    view.shown = {a.entry()};
    view.settle();
    // From 10, 10: half of the 580 pixels that are free, and as wide as the widget wants to be.
    const QSize size(a.annotation().sizeHint().width(), 290);
    EXPECT_EQ(a.annotation().frameGeometry(), QRect(QPoint(10, 10), size));
    const auto covered = view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS);
    EXPECT_NEAR(covered.first.x, 10.0f / 400.0f - 1.01f, 1e-6f);
    EXPECT_NEAR(covered.second.x, (10.0f + static_cast<float>(size.width())) / 400.0f - 0.99f, 1e-6f);
    EXPECT_NEAR(covered.first.y, 1.0f - 300.0f / 300.0f - 0.01f, 1e-6f);
    EXPECT_NEAR(covered.second.y, 1.0f - 10.0f / 300.0f + 0.01f, 1e-6f);
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(LyrRendering::SCENE_PASS)));
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(-1)));
}

TEST_F(RenderDriver, covers_no_more_than_the_view) {
    view.resize(20.0f, 20.0f);
    view.shown = {a.entry()};
    view.settle();
    const auto covered = view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS);
    EXPECT_EQ(covered.second.x, 1.0f);
    EXPECT_EQ(covered.first.y, -1.0f);
}

TEST_F(RenderDriver, survives_views_of_no_and_of_one_pixel) {
    view.shown = {a.entry()};
    view.settle();
    for (const float length :
         {0.0f, 1.0f, -5.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 3e38f}) {
        view.resize(length, length);
        view.settle();
        EXPECT_EQ(view.frame(), 0u) << length;
        // The margin of 10 pixels puts the legend outside of a view of one pixel.
        EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS))) << length;
    }
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderDriver, wants_all_of_the_overlay_while_its_node_asks_for_an_update) {
    view.node->clearUpdateFlags();
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceUpdateRect(LyrRendering::OVERLAY_PASS)));
    view.node->addUpdateFlags(2u);
    const auto rect = view.driver().getDeviceUpdateRect(LyrRendering::OVERLAY_PASS);
    EXPECT_EQ(rect.first, (LyrVector2<float>{-1.0f, -1.0f}));
    EXPECT_EQ(rect.second, (LyrVector2<float>{1.0f, 1.0f}));
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceUpdateRect(LyrRendering::SCENE_PASS)));
    EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceUpdateRect(-1)));
}

TEST_F(RenderDriver, finds_a_rendered_class_anywhere_below_a_node) {
    using LyrSceneGraph::SceneGraphObjectNode;
    const LyrObjectPtr table(a.table.get());
    auto* leaf = new SceneGraphObjectNode(table.get());
    auto* branch = new SceneGraphObjectNode(nullptr);
    view.root->appendChild(new SceneGraphObjectNode(nullptr));
    view.root->appendChild(branch);
    branch->appendChild(leaf);
    const auto rendered = [&](const char* name) { return view.driver().isObjectTypeRendered(*view.root, name); };
    EXPECT_TRUE(rendered("LyrColorLookupTable"));
    EXPECT_TRUE(rendered("LyrObject"));
    EXPECT_TRUE(rendered("LyrCamera"));
    EXPECT_FALSE(rendered("LyrColorLookupTableRenderSettings"));
    EXPECT_FALSE(rendered("NoSuchClass"));
    EXPECT_FALSE(rendered(nullptr));
    branch->setRenderingStateIdentifier(0);
    EXPECT_FALSE(rendered("LyrColorLookupTable"));
    branch->setRenderingStateIdentifier(3);
    leaf->setRenderingStateIdentifier(0);
    EXPECT_FALSE(rendered("LyrColorLookupTable"));
    EXPECT_TRUE(rendered("LyrCamera"));
}

TEST_F(RenderDriver, maps_widget_pixels_to_the_device) {
    view.cameraNode->transform().setViewport({100.0f, 50.0f}, {200.0f, 400.0f});
    const OpenDriver driver(view.node, nullptr);
    const auto point = driver.widgetToDevice({99.5f, 49.5f, 0.5f});
    EXPECT_EQ(point, (LyrVector3<float>{-1.0f, 1.0f, 0.0f}));
    EXPECT_EQ(driver.widgetToDevice({299.5f, 449.5f, 1.0f}), (LyrVector3<float>{1.0f, -1.0f, 1.0f}));
}

TEST_F(RenderDriver, fills_in_the_centres_of_the_frames) {
    OpenDriver driver(view.node, nullptr);
    Entries entries;
    entries.append(a.entry());
    entries.append(b.entry(false));
    EXPECT_TRUE(driver.updateEntryList(entries));
    const QRect frame = a.annotation().frameGeometry();
    EXPECT_EQ(entries[0].center.x, static_cast<float>(frame.left()) + static_cast<float>(frame.width() - 1) / 2.0f);
    EXPECT_EQ(entries[0].center.y, static_cast<float>(frame.top()) + static_cast<float>(frame.height() - 1) / 2.0f);
    EXPECT_EQ(entries[0].center.z, 0.5f);
    EXPECT_EQ(entries[1].center.z, 0.5f);
}

TEST_F(RenderDriver, leaves_no_undo_step_and_no_mark_behind) {
    auto& application = LyqApplication::instance();
    application.undoStack().clear();
    MarkWatch watch;
    std::vector<LyrObjectIOCPtr> lines;
    for (LyrObject* object : {view.container(), view.camera(), view.renderer.get(), a.held.get(), b.held.get()}) {
        lines.emplace_back(&watch, object);
    }
    {
        const LyqApplication::UserActionScope action(QStringLiteral("Drag"));
        for (int i = 0; i < 100; ++i) {
            view.shown = i % 2 ? std::vector<Entry>{a.entry()} : std::vector<Entry>{b.entry(i % 4 == 0), a.entry()};
            view.frame();
        }
    }
    EXPECT_EQ(application.undoStack().count(), 0);
    EXPECT_GT(watch.messages, 50);
    EXPECT_EQ(watch.marks, 0);
    // The watch sees marks: the settings are a document's data.
    const LyrObjectIOCPtr line(&watch, a.settings.get());
    lyrSetValue(a.settings.get(), Lyr::Position, Lyr::Right);
    EXPECT_GT(watch.marks, 0);
}

TEST_F(RenderDriver, lets_go_of_everything_with_its_node) {
    view.shown = {a.entry()};
    view.settle();
    const auto references = a.held->getRefCount();
    const LyrObjectPtr container(view.container());
    const auto containerReferences = container->getRefCount();
    view.node->appendRenderingDriver(new CountedDriver(view.node, nullptr));
    const int before = CountedDriver::count;
    view.shown.clear();
    view.node->removeRenderingDrivers();
    EXPECT_LT(a.held->getRefCount(), references);
    EXPECT_EQ(container->getRefCount(), containerReferences - 1);
    EXPECT_EQ(view.node->getRenderingDriverCount(), 0);
    EXPECT_EQ(CountedDriver::count, before - 1);
}
