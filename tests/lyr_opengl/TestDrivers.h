#pragma once

#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_opengl/LyrCamera.h>
#include <lyr_opengl/LyrRenderPlugin.h>
#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

#include <functional>
#include <string>
#include <vector>

/** A driver that calls the test back. */
class TestDriver : public LyrRendering::Driver {
public:
    struct Calls {
        std::function<void(TestDriver&)> onMade;
        std::function<bool(TestDriver&)> init;
        std::function<bool(TestDriver&, long long pass)> render;
        int made = 0;
        int destroyed = 0;
        int inits = 0;
        int cleanups = 0;
        std::vector<LyrTimestamp> since;
        std::function<LyrRendering::DeviceRect(TestDriver&, long long pass)> update;
        std::function<LyrRendering::DeviceRect(TestDriver&, long long pass)> coverage;
    };

    TestDriver(LyrSceneGraph::ViewportObjectNode* at, Calls& calls) : node(at), mCalls(calls) {
        ++mCalls.made;
        if (mCalls.onMade) {
            mCalls.onMade(*this);
        }
    }
    ~TestDriver() override { ++mCalls.destroyed; }

    bool init() override {
        ++mCalls.inits;
        mCalls.since.push_back(getUpdateTimestamp());
        return !mCalls.init || mCalls.init(*this);
    }
    void cleanup() override { ++mCalls.cleanups; }
    LyrRendering::DeviceRect getDeviceUpdateRect(long long pass) override {
        return mCalls.update ? mCalls.update(*this, pass) : Driver::getDeviceUpdateRect(pass);
    }
    LyrRendering::DeviceRect getDeviceCoverageRect(long long pass) override {
        return mCalls.coverage ? mCalls.coverage(*this, pass) : Driver::getDeviceCoverageRect(pass);
    }
    bool renderObject(long long pass, void*) override { return !mCalls.render || mCalls.render(*this, pass); }

    LyrSceneGraph::ViewportObjectNode* node;

private:
    Calls& mCalls;
};

/** A render plug-in of the module "test_module" that gives each node one driver. */
class TestPlugin : public LyrRenderPlugin {
public:
    explicit TestPlugin(TestDriver::Calls& calls) : mAction(calls) { addAction(Lyr::DriverInit, &mAction); }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestPlugin", sizeof(TestPlugin), &LyrRenderPlugin::metaClass(), nullptr,
                                       "test_module", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

private:
    class Action : public LyrActionAttr {
    public:
        explicit Action(TestDriver::Calls& calls) : LyrActionAttr(0, 0), mCalls(calls) {}
        void execute() override {
            if (auto* node = dynamic_cast<LyrSceneGraph::ViewportObjectNode*>(getParameter())) {
                node->appendRenderingDriver(new TestDriver(node, mCalls));
                ok(Lyr::Success);
            }
        }

    private:
        TestDriver::Calls& mCalls;
    };
    Action mAction;
};

/** A rendered object. */
class TestLayer : public LyrObject {
public:
    explicit TestLayer(LyrObject* plugin = nullptr) {
        renderPlugin.setValue(LyrObjectLink(plugin, nullptr, -1));
        rendering.setValue(1);
        addProperty(Lyr::RenderPlugin, &renderPlugin);
        addProperty(Lyr::Rendering, &rendering);
        addProperty(Lyr::Object, &object);
    }

    LyrObjectHardLinkOP renderPlugin;
    LyrBooleanOP rendering;
    LyrObjectSoftLinkOP object;
};

inline void setRenderedObjects(LyrObject* camera, const std::vector<LyrObject*>& objects) {
    std::vector<LyrObjectLink> links;
    for (LyrObject* object : objects) {
        links.emplace_back(object, nullptr, -1);
    }
    auto* list = LyrLinkListIF::getInterface(camera->getProperty(Lyr::RenderedObjectList));
    list->initArray(0, static_cast<long long>(links.size()) - 1, links.data());
}
