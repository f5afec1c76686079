#include <lyr_core/LyrError.h>
#include <lyr_opengl/LyrViewScene.h>

#include <gtest/gtest.h>

#include <lyr_opengl/TestDrivers.h>

#include <memory>

using LyrSceneGraph::SceneGraphObjectNode;
using LyrSceneGraph::ViewportObjectNode;
using LyrSceneGraph::ViewScene;

namespace {

/** A view whose context cannot be had yet. */
struct NoContext : ViewScene::Surface {
    bool makeCurrent() override { return false; }
    void doneCurrent() override {}
};

struct Errors : LyrError::Listener {
    std::vector<Lyrenum> codes;
    bool errorEmitted(const LyrError::Message& message) override {
        codes.push_back(message.getCode());
        return true;
    }
};

struct Listener : LyrIOC {
    int heard = 0;
    bool iocCallback(Message&) override { return ++heard > 0; }
};

struct Scene : testing::Test {
    Scene() { scene->setSurface(&surface); }
    ~Scene() override { EXPECT_TRUE(errors.codes.empty()); }

    void show(const std::vector<LyrObject*>& objects) {
        setRenderedObjects(camera.get(), objects);
        scene->synchronize();
    }
    TestLayer* makeLayer() {
        layers.emplace_back(new TestLayer(plugin.get()));
        return static_cast<TestLayer*>(layers.back().get());
    }

    Errors errors;
    Listener listener;
    NoContext surface;
    TestDriver::Calls calls;
    LyrObjectPtr camera{new LyrCamera};
    LyrObjectPtr plugin{new TestPlugin(calls)};
    std::vector<LyrObjectPtr> layers;
    std::unique_ptr<ViewScene> scene = std::make_unique<ViewScene>(camera.get(), &listener);
};

}  // namespace

TEST_F(Scene, keeps_one_node_for_each_object_in_the_order_of_the_list) {
    TestLayer* a = makeLayer();
    TestLayer* b = makeLayer();
    show({a, nullptr, b, a});
    ASSERT_EQ(scene->getViewportNodeCount(), 2);
    ViewportObjectNode* nodeA = scene->getViewportNode(0);
    ViewportObjectNode* nodeB = scene->getViewportNode(1);
    EXPECT_EQ(nodeA->getObject(), a);
    EXPECT_EQ(nodeB->getObject(), b);
    EXPECT_EQ(nodeA->getSceneNode(), scene->getSceneNode());
    EXPECT_EQ(nodeA->getCameraNode(), scene->getCameraNode());
    EXPECT_EQ(scene->getSceneNode()->getObject(), camera.get());
    show({b, a});
    EXPECT_EQ(scene->getViewportNode(0), nodeB);
    EXPECT_EQ(scene->getViewportNode(1), nodeA);
    EXPECT_EQ(calls.made, 2);
    EXPECT_EQ(calls.destroyed, 0);
}

TEST_F(Scene, shows_the_linked_object_below_the_object_that_links_it) {
    const LyrObjectPtr analysis(new LyrObject);
    TestLayer* layer = makeLayer();
    show({layer});
    EXPECT_EQ(scene->getSceneNode()->getChild(0)->getChildCount(), 0);
    layer->object.setValue(LyrObjectLink(analysis.get(), nullptr, -1));
    scene->prepare();
    ASSERT_EQ(scene->getSceneNode()->getChildCount(), 1);
    const SceneGraphObjectNode* node = scene->getSceneNode()->getChild(0);
    EXPECT_EQ(node->getObject(), layer);
    ASSERT_EQ(node->getChildCount(), 1);
    EXPECT_EQ(node->getChild(0)->getObject(), analysis.get());
    EXPECT_EQ(listener.heard, 0);
    analysis->setNameTemplate("pores");
    EXPECT_GE(listener.heard, 1);
}

TEST_F(Scene, leaves_out_objects_whose_rendering_is_off) {
    TestLayer* layer = makeLayer();
    show({layer});
    scene->prepare();
    layer->rendering.setValue(0);
    scene->prepare();
    EXPECT_EQ(calls.inits, 1);
    EXPECT_EQ(scene->getSceneNode()->getChild(0)->getRenderingStateIdentifier(), 0);
    layer->rendering.setValue(1);
    EXPECT_TRUE(scene->prepare().mustDraw);
    EXPECT_EQ(calls.inits, 2);
    EXPECT_NE(scene->getSceneNode()->getChild(0)->getRenderingStateIdentifier(), 0);
    EXPECT_EQ(calls.made, 1);
}

TEST_F(Scene, tells_each_driver_when_it_was_updated_last) {
    show({makeLayer()});
    LyrTimestamp during;
    calls.init = [&](TestDriver&) {
        during = LyrTimestamp::getCurrentTimestamp();
        return true;
    };
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    scene->prepare();
    const LyrTimestamp first = during;
    scene->prepare();
    ASSERT_EQ(calls.since.size(), 2u);
    EXPECT_TRUE(calls.since[0].isNull());
    EXPECT_GT(calls.since[1], before);
    EXPECT_LT(calls.since[1], first);  // what changes inside init() is later than the time that it is given next
}

TEST_F(Scene, does_not_store_the_time_of_a_suppressed_update) {
    show({makeLayer()});
    scene->getCameraNode()->setSuppressed(true);
    scene->prepare();
    scene->getCameraNode()->setSuppressed(false);
    scene->prepare();
    scene->prepare();
    EXPECT_TRUE(calls.since[1].isNull());
    EXPECT_FALSE(calls.since[2].isNull());
}

TEST_F(Scene, reports_a_change_once_and_has_it_drawn_until_it_is) {
    show({makeLayer()});
    calls.init = [&](TestDriver& driver) {
        if (calls.inits == 2) {
            driver.node->addUpdateFlags(5);
        }
        return true;
    };
    scene->prepare();
    const ViewScene::Preparation second = scene->prepare();
    EXPECT_TRUE(second.changed);
    EXPECT_TRUE(second.mustDraw);
    const ViewScene::Preparation third = scene->prepare();
    EXPECT_FALSE(third.changed);
    EXPECT_TRUE(third.mustDraw);  // not drawn yet
    EXPECT_EQ(scene->getViewportNode(0)->getUpdateFlags(), 5u);
}

TEST_F(Scene, destroys_the_drivers_of_a_removed_object_at_once) {
    TestLayer* a = makeLayer();
    TestLayer* b = makeLayer();
    show({a, b});
    const LyrObjectPtr held(scene->getViewportNode(0));
    show({b});
    EXPECT_EQ(calls.destroyed, 1);
    EXPECT_EQ(scene->getViewportNodeCount(), 1);
    EXPECT_EQ(scene->getSceneNode()->getChildCount(), 1);
}

TEST_F(Scene, destroys_at_the_end_of_the_frame_what_goes_inside_of_it) {
    TestLayer* a = makeLayer();
    TestLayer* b = makeLayer();
    show({a, b});
    calls.init = [&](TestDriver& driver) {
        if (driver.node->getObject() == a) {
            show({});
            EXPECT_EQ(calls.destroyed, 0);
        }
        return true;
    };
    scene->prepare();
    EXPECT_EQ(calls.inits, 1);  // b was gone before its turn
    EXPECT_EQ(calls.destroyed, 2);
    EXPECT_EQ(scene->getViewportNodeCount(), 0);
}

TEST_F(Scene, may_be_destroyed_inside_of_a_frame) {
    show({makeLayer(), makeLayer()});
    calls.init = [&](TestDriver&) {
        scene.reset();
        EXPECT_EQ(calls.destroyed, 0);
        return true;
    };
    ViewScene& dying = *scene;
    const ViewScene::Preparation result = dying.prepare();
    EXPECT_FALSE(result.mustDraw);
    EXPECT_EQ(calls.inits, 1);
    EXPECT_EQ(calls.destroyed, 2);
}

TEST_F(Scene, exchanges_the_drivers_with_the_plugin) {
    TestDriver::Calls otherCalls;
    const LyrObjectPtr other(new TestPlugin(otherCalls));
    TestLayer* layer = makeLayer();
    show({layer});
    layer->renderPlugin.setValue(LyrObjectLink(other.get(), nullptr, -1));
    scene->synchronize();
    EXPECT_EQ(calls.destroyed, 1);
    EXPECT_EQ(otherCalls.made, 1);
    EXPECT_EQ(scene->getViewportNodeCount(), 1);
    EXPECT_EQ(scene->getSceneNode()->getChild(0)->getObject(), layer);
    layer->renderPlugin.setValue(LyrObjectLink());
    scene->synchronize();
    EXPECT_EQ(otherCalls.destroyed, 1);
    EXPECT_EQ(scene->getViewportNode(0)->getRenderingDriverCount(), 0);
    scene.reset();
}

TEST_F(Scene, makes_no_drivers_without_a_surface) {
    show({makeLayer()});
    scene->setSurface(nullptr);
    EXPECT_EQ(calls.destroyed, 1);
    EXPECT_EQ(scene->getViewportNodeCount(), 1);
    EXPECT_FALSE(scene->prepare().changed);
    scene->setSurface(&surface);
    EXPECT_EQ(calls.made, 2);
}

TEST_F(Scene, reports_a_plugin_that_gives_no_driver_once) {
    const LyrObjectPtr wrong(new LyrObject);
    show({makeLayer()});
    static_cast<TestLayer*>(layers[0].get())->renderPlugin.setValue(LyrObjectLink(wrong.get(), nullptr, -1));
    scene->prepare();
    scene->prepare();
    EXPECT_EQ(errors.codes, std::vector<Lyrenum>{Lyr::WrongType});
    errors.codes.clear();
}

TEST_F(Scene, ends_changes_that_cause_each_other) {
    TestLayer* a = makeLayer();
    TestLayer* b = makeLayer();
    // Each driver that is made has the other object shown instead.
    calls.onMade = [&](TestDriver& driver) { show({driver.node->getObject() == a ? b : a}); };
    show({a});
    EXPECT_EQ(calls.made, 8);
    EXPECT_EQ(errors.codes, std::vector<Lyrenum>{Lyr::Failed});
    errors.codes.clear();
    calls.onMade = {};
    show({a});
    ASSERT_EQ(scene->getViewportNodeCount(), 1);
    EXPECT_EQ(scene->getViewportNode(0)->getObject(), a);
    EXPECT_EQ(scene->getViewportNode(0)->getRenderingDriverCount(), 1);
}

TEST_F(Scene, has_everything_drawn_at_first) {
    show({makeLayer()});
    EXPECT_TRUE(scene->prepare().mustDraw);
    EXPECT_EQ(scene->getUpdateRect().first, LyrVector2<float>(-1, -1));
    EXPECT_EQ(scene->getUpdateRect().second, LyrVector2<float>(1, 1));
}

TEST_F(Scene, asks_each_driver_after_its_init_what_it_covers_in_each_pass) {
    TestLayer* a = makeLayer();
    TestLayer* b = makeLayer();
    show({a, b});
    std::vector<std::pair<LyrObject*, long long>> asked;
    calls.coverage = [&](TestDriver& driver, long long pass) {
        EXPECT_EQ(calls.inits, 2);
        asked.emplace_back(driver.node->getObject(), pass);
        if (pass != LyrRendering::OVERLAY_PASS) {
            return LyrRendering::emptyRect();
        }
        return driver.node->getObject() == a ? LyrRendering::DeviceRect{{-0.5f, -0.25f}, {0.0f, 0.0f}}
                                             : LyrRendering::DeviceRect{{-0.25f, -0.125f}, {0.5f, 0.75f}};
    };
    scene->prepare();
    EXPECT_EQ(asked, (std::vector<std::pair<LyrObject*, long long>>{{a, 1}, {a, 2}, {a, 3}, {b, 1}, {b, 2}, {b, 3}}));
    const LyrRendering::DeviceRect covered = scene->getCoverageRect(LyrRendering::OVERLAY_PASS);
    EXPECT_EQ(covered.first, LyrVector2<float>(-0.5f, -0.25f));
    EXPECT_EQ(covered.second, LyrVector2<float>(0.5f, 0.75f));
    for (const long long pass : {0LL, LyrRendering::SCENE_PASS, LyrRendering::MARK_PASS, 4LL}) {
        EXPECT_TRUE(LyrRendering::isEmpty(scene->getCoverageRect(pass))) << pass;
    }
    EXPECT_EQ(asked.size(), 6u);  // asked once for each frame
    show({});
    scene->prepare();
    EXPECT_TRUE(LyrRendering::isEmpty(scene->getCoverageRect(LyrRendering::OVERLAY_PASS)));
}

TEST_F(Scene, does_not_ask_a_driver_whose_init_failed) {
    show({makeLayer()});
    calls.init = [](TestDriver&) { return false; };
    int asked = 0;
    calls.coverage = calls.update = [&](TestDriver&, long long) {
        ++asked;
        return LyrRendering::deviceSquare();
    };
    scene->prepare();
    EXPECT_EQ(asked, 0);
    EXPECT_TRUE(LyrRendering::isEmpty(scene->getCoverageRect(LyrRendering::SCENE_PASS)));
}
