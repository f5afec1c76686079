#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <colortable/LibraryInit.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationHandler.h>
#include <colortable/viewport/LyrColorLookupTableRenderDriver.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_opengl/LyrCamera.h>
#include <lyr_opengl/LyrViewportObjectNode.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <functional>
#include <memory>
#include <vector>

/** A view made by hand, for tests of what draws legends in it: a slice view with its camera, the nodes that a host
 * would make, and a handler that shows what the test says. */
namespace legends {

using Entry = LyrColorLookupTableRenderDriver::Entry;
using Entries = LyrValueList<Entry>;
using LinkList = LyrValueArrayPropertyIF<LyrObjectLink>;

inline constexpr int WRONG_TYPE = static_cast<int>(0xF3CB0005u);

/** Keeps the codes of errors while it lives. */
struct Errors : LyrError::Listener {
    std::vector<int> codes;
    bool errorEmitted(const LyrError::Message& message) override {
        codes.push_back(message.getCode());
        return true;
    }
};

inline LyrObjectLink link(LyrObject* object) {
    return LyrObjectLink(object, nullptr, -1);
}

inline LinkList& listOf(const LyrObject* object, Lyrenum id) {
    return *LyrValueArrayOPPtr<LinkList>(object, id).get();
}

inline std::vector<LyrObject*> objectsIn(const LyrObject* object, Lyrenum id) {
    std::vector<LyrObjectLink> links(static_cast<std::size_t>(listOf(object, id).getArraySize()));
    listOf(object, id).getArrayItems(0, static_cast<long long>(links.size()) - 1, links.data());
    std::vector<LyrObject*> objects;
    for (const LyrObjectLink& each : links) {
        objects.push_back(each.getLink());
    }
    return objects;
}

inline void setList(const LyrObject* object, Lyrenum id, const std::vector<LyrObject*>& objects) {
    std::vector<LyrObjectLink> links;
    for (LyrObject* each : objects) {
        links.push_back(link(each));
    }
    listOf(object, id).initArray(0, static_cast<long long>(links.size()) - 1, links.data());
}

inline LyrObjectPtr rendererOf(const LyrObject* camera) {
    for (LyrObject* object : objectsIn(camera, Lyr::RenderedObjectList)) {
        if (object && object->getMetaClass().isOfType("LyrColorLookupTableRenderObject")) {
            return object;
        }
    }
    return {};
}

/** Calls a function for its update. */
class Handler : public LyrColorLookupTableAnnotationHandler {
public:
    using Update = std::function<bool(Entries&, LyrObject* container, LyrTimestamp since)>;
    explicit Handler(Update function) : mUpdate(std::move(function)) {}

    bool update(LyrColorLookupTableRenderDriver*, const LyrSceneGraph::SceneGraphObjectNode* root, Entries& entries,
                LyrObject* container, LyrTimestamp since) override {
        scene = root;
        ++calls;
        return mUpdate(entries, container, since);
    }

    const LyrSceneGraph::SceneGraphObjectNode* scene = nullptr;
    int calls = 0;

private:
    Update mUpdate;
};

/** One legend with a table and settings of its own. */
struct Legend {
    Legend() {
        lyrSetValue(held.get(), Lyr::Object, link(table.get()));
        lyrSetValue(held.get(), Lyr::ColorLookupTableRenderSettings, link(settings.get()));
    }
    LyqColorLookupTableAnnotation& annotation() const {
        return static_cast<LyqColorLookupTableAnnotation&>(*held.get());
    }
    Entry entry(bool visible = true) const { return {held, visible, {}}; }

    LyrObjectRefPtr table{"LyrColorLookupTable", Lyr::DocumentScope};
    LyrObjectRefPtr settings{"LyrColorLookupTableRenderSettings", Lyr::DocumentScope};
    LyrObjectRefPtr held{"LyqColorLookupTableAnnotation", Lyr::TransientScope};
};

/** The use of the library for as long as it lives. */
struct LibraryUse {
    LibraryUse() { LYQCOLORTABLE::LibraryInit::init(); }
    ~LibraryUse() { LYQCOLORTABLE::LibraryInit::cleanup(); }
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;
};

class LegendView {
public:
    explicit LegendView(float width = 800.0f, float height = 600.0f) {
        makeNodes();
        resize(width, height);
        handler = new Handler([this](Entries& list, LyrObject*, LyrTimestamp) {
            for (const Entry& each : shown) {
                list.append(each);
            }
            return reportsChange;
        });
        held = LyrObjectPtr(handler);
        setList(renderer.get(), Lyr::AnnotationHandlerList, {handler});
    }

    void resize(float width, float height) { cameraNode->transform().setViewport({0.0f, 0.0f}, {width, height}); }

    /** What a host does before a frame. Returns the node's update flags. */
    unsigned int frame() {
        const LyrTimestamp now = LyrTimestamp::getCurrentTimestamp();
        node->clearUpdateFlags();
        driver().init();
        if (!cameraNode->isSuppressed()) {
            driver().setUpdateTimestamp(now);
        }
        return node->getUpdateFlags();
    }
    /** Until nothing changes any more: a size hint may depend on the size. */
    void settle() {
        for (int i = 0; i < 3; ++i) {
            frame();
        }
    }

    LyrColorLookupTableRenderDriver& driver() const {
        return dynamic_cast<LyrColorLookupTableRenderDriver&>(*node->getRenderingDriver(0));
    }
    LyrObject* container() const {
        return lyrGetValue(view.get(), Lyr::ColorLookupTableAnnotationContainer, LyrObjectLink()).getLink();
    }
    LyrObject* camera() const { return static_cast<const LyqCameraWidget&>(*view).camera(); }

    const LibraryUse use;
    std::vector<Entry> shown;
    bool reportsChange = false;
    std::unique_ptr<LyqWorkspaceWidget> view{dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create("LyqSliceWidget"))};
    LyrObjectPtr renderer = rendererOf(camera());
    LyrObjectPtr held;
    Handler* handler = nullptr;
    LyrSceneGraph::CameraNode* cameraNode = nullptr;
    LyrSceneGraph::SceneGraphObjectNode* root = nullptr;
    LyrSceneGraph::ViewportObjectNode* node = nullptr;

private:
    void makeNodes() {
        cameraNode = new LyrSceneGraph::CameraNode(camera());
        mHeldCamera = LyrObjectPtr(cameraNode);
        root = new LyrSceneGraph::SceneGraphObjectNode(camera());
        mHeldRoot = LyrObjectPtr(root);
        node = new LyrSceneGraph::ViewportObjectNode(renderer.get(), root, cameraNode);
        mHeldNode = LyrObjectPtr(node);
        lyrGetValue(renderer.get(), Lyr::RenderPlugin, LyrObjectLink()).getLink()->runAction(Lyr::DriverInit, node);
    }

    LyrObjectPtr mHeldCamera;
    LyrObjectPtr mHeldRoot;
    LyrObjectPtr mHeldNode;
};

}  // namespace legends
