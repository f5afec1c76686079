#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_opengl/LyrDriverCount_p.h>
#include <lyr_opengl/LyrGlScope_p.h>
#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrViewScene.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace {

using LyrRendering::DeviceRect;
using LyrRendering::Driver;
using LyrSceneGraph::CameraNode;
using LyrSceneGraph::DriverCount;
using LyrSceneGraph::SceneGraphObjectNode;
using LyrSceneGraph::ViewportObjectNode;

constexpr long long FIRST_PASS = LyrRendering::SCENE_PASS;
constexpr long long LAST_PASS = LyrRendering::OVERLAY_PASS;

/** A rectangle for each pass. */
using PassRects = std::array<DeviceRect, static_cast<std::size_t>(LAST_PASS - FIRST_PASS + 1)>;

constexpr std::size_t placeOf(long long pass) {
    return static_cast<std::size_t>(pass - FIRST_PASS);
}

PassRects emptyRects() {
    PassRects rects;
    rects.fill(LyrRendering::emptyRect());
    return rects;
}

/** Changes inside of changes; beyond, something makes them without end. */
constexpr int DEEPEST_SYNCHRONIZATION = 8;

/** A rendered object in the view. */
struct Record {
    Record(LyrObject* rendered, SceneGraphObjectNode* root, CameraNode* camera)
        : object(rendered),
          viewportNode(new ViewportObjectNode(rendered, root, camera)),
          sceneNode(new SceneGraphObjectNode(rendered)) {}
    ~Record() { dropDrivers(false); }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    ViewportObjectNode& node() const { return static_cast<ViewportObjectNode&>(*viewportNode); }
    SceneGraphObjectNode& scene() const { return static_cast<SceneGraphObjectNode&>(*sceneNode); }

    void dropDrivers(bool contextIsCurrent) {
        for (std::int64_t i = 0; contextIsCurrent && i < node().getRenderingDriverCount(); ++i) {
            node().getRenderingDriver(i)->cleanup();
        }
        ready.clear();
        node().removeRenderingDrivers();
        count.set("", 0);
    }
    bool isReady(const Driver* driver) const {
        return !removed && rendering && std::find(ready.begin(), ready.end(), driver) != ready.end();
    }

    LyrObjectPtr object;
    LyrObjectPtr viewportNode;
    LyrObjectPtr sceneNode;
    LyrObjectPtr plugin;   ///< whose drivers the viewport node has
    LyrObjectPtr content;  ///< what the object links by Lyr::Object
    bool rendering = true;
    bool removed = false;
    bool failed = false;               ///< a driver could not draw; told once
    std::vector<const Driver*> ready;  ///< drivers whose last init() went well
    DriverCount count;
};

using Records = std::vector<std::shared_ptr<Record>>;

LyrObject* linkOf(const LyrObject* object, Lyrenum id) {
    return lyrGetValue(object, id, LyrObjectLink()).getLink();
}

template <class Call>
void forEachDriver(const Record& record, Call call) {
    const ViewportObjectNode& node = record.node();
    for (std::int64_t i = 0; i < node.getRenderingDriverCount(); ++i) {
        call(*node.getRenderingDriver(i));
    }
}

/** Each object once, in the order of the list. */
std::vector<LyrObject*> renderedObjects(const LyrObject* camera) {
    LyrValueArrayOPCache<LyrObjectLink> list;
    list.load(camera, Lyr::RenderedObjectList);
    std::vector<LyrObject*> objects;
    for (const LyrObjectLink& link : list.items()) {
        if (link.getLink() && std::find(objects.begin(), objects.end(), link.getLink()) == objects.end()) {
            objects.push_back(link.getLink());
        }
    }
    return objects;
}

}  // namespace

namespace LyrSceneGraph {

ViewScene::Surface::~Surface() = default;

struct ViewScene::State : DriverHolder {
    explicit State(LyrObject* cameraObject, LyrIOC* listener)
        : camera(cameraObject), cameraNode(new CameraNode(cameraObject)), root(new SceneGraphObjectNode(cameraObject)) {
        contents.setListener(listener);
    }
    virtual ~State() { discardAll(); }

    CameraNode* cameraOf() const { return static_cast<CameraNode*>(cameraNode.get()); }
    SceneGraphObjectNode* rootOf() const { return static_cast<SceneGraphObjectNode*>(root.get()); }

    void synchronize();
    bool synchronizeOnce();
    bool updateRecord(Record& record);
    bool updateDrivers(Record& record);
    void rebuildTree();
    void discard(std::shared_ptr<Record> record);
    void discardAll();
    void destroyDiscarded();
    void withContext(const std::function<void(bool)>& call) const;
    void dropDriversOf(const char* module) override;
    bool prepare(const std::shared_ptr<Record>& record);
    void collectRects();
    void drawPass(const Records& drawn, long long pass);
    void drawWith(Record& record, std::int64_t index, long long pass);

    LyrObjectPtr camera;
    LyrObjectPtr cameraNode;
    LyrObjectPtr root;
    LyrObjectIOCPtrList contents;
    Surface* surface = nullptr;
    Records records;
    Records discarded;
    int frames = 0;            ///< frames under way, one inside the other
    int synchronizations = 0;  ///< the same
    bool again = false;
    bool drawRequested = true;
    bool drawing = false;
    bool dead = false;  ///< the scene is gone, a frame is under way still
    DeviceRect updateRect = LyrRendering::emptyRect();
    PassRects coverage = emptyRects();
};

namespace {

/** Counts in a frame; what was discarded in it is destroyed when the outermost one ends. */
template <class State>
class FrameScope {
public:
    explicit FrameScope(State& state) : mState(state) { ++mState.frames; }
    ~FrameScope() {
        if (--mState.frames == 0) {
            mState.destroyDiscarded();
        }
    }
    FrameScope(const FrameScope&) = delete;
    FrameScope& operator=(const FrameScope&) = delete;

private:
    State& mState;
};

}  // namespace

/** Calls with the context current, if there is one, and tells whether there is. */
void ViewScene::State::withContext(const std::function<void(bool)>& call) const {
    // While drawing the context is current, and has to stay it.
    const bool made = surface && !drawing && surface->makeCurrent();
    call(made || drawing);
    if (made) {
        surface->doneCurrent();
    }
}

void ViewScene::State::discard(std::shared_ptr<Record> record) {
    record->removed = true;
    discarded.push_back(std::move(record));
    if (frames == 0) {
        destroyDiscarded();
    }
}

void ViewScene::State::discardAll() {
    for (auto& record : std::exchange(records, {})) {
        record->removed = true;
        discarded.push_back(record);
    }
    rootOf()->removeChildren();
    contents.clear();
    if (frames == 0) {
        destroyDiscarded();
    }
}

void ViewScene::State::destroyDiscarded() {
    while (!discarded.empty()) {
        Records gone = std::exchange(discarded, {});
        withContext([&](bool isCurrent) {
            for (const auto& record : gone) {
                record->dropDrivers(isCurrent);
            }
            gone.clear();
        });
    }
}

void ViewScene::State::dropDriversOf(const char* module) {
    // At the end of the process: contexts may be gone, and what is in them goes anyway.
    for (const auto& record : Records(records)) {
        if (record->count.getModule() == module) {
            record->plugin = LyrObjectPtr();
            record->dropDrivers(false);
        }
    }
}

void ViewScene::State::synchronize() {
    if (synchronizations > 0 || dead) {
        again = true;  // a change made by what a synchronization calls
        return;
    }
    ++synchronizations;
    int rounds = 0;
    do {
        again = false;
        drawRequested = synchronizeOnce() || drawRequested;
    } while (again && !dead && ++rounds < DEEPEST_SYNCHRONIZATION);
    --synchronizations;
    if (again && !dead) {
        LyrError::emitError(LyrError::Message(camera.get(), Lyr::Failed));
    }
}

/** True if anything is another now. */
bool ViewScene::State::synchronizeOnce() {
    const std::vector<LyrObject*> objects = renderedObjects(camera.get());
    Records before = std::exchange(records, {});
    const Records old = before;
    for (LyrObject* object : objects) {
        const auto found =
            std::find_if(before.begin(), before.end(), [&](const auto& record) { return record->object == object; });
        if (found != before.end()) {
            records.push_back(std::move(*found));
            before.erase(found);
        } else {
            records.push_back(std::make_shared<Record>(object, rootOf(), cameraOf()));
        }
    }
    bool changed = records != old;
    for (auto& record : before) {
        discard(std::move(record));
    }
    bool treeChanged = changed;
    for (const auto& record : Records(records)) {
        if (!dead && !record->removed) {
            treeChanged = updateRecord(*record) || treeChanged;
            changed = updateDrivers(*record) || changed;
        }
    }
    if (treeChanged && !dead) {
        rebuildTree();
    }
    return changed || treeChanged;
}

bool ViewScene::State::updateRecord(Record& record) {
    const bool rendering = lyrGetValue(record.object.get(), Lyr::Rendering, Lyrenum(1)) != Lyrenum(0);
    const LyrObjectPtr content(linkOf(record.object.get(), Lyr::Object));
    const bool changed = rendering != record.rendering || !(content == record.content);
    record.rendering = rendering;
    record.content = content;
    return changed;
}

/** Nodes stay the same as long as their objects are shown; their children are made anew. */
void ViewScene::State::rebuildTree() {
    rootOf()->removeChildren();
    contents.clear();
    for (const auto& record : records) {
        SceneGraphObjectNode& node = record->scene();
        node.setRenderingStateIdentifier(record->rendering ? 1 : 0);
        const SceneGraphObjectNode* child = node.getChild(0);
        if ((child ? child->getObject() : nullptr) != record->content.get()) {
            node.removeChildren();
            if (record->content) {
                node.appendChild(new SceneGraphObjectNode(record->content.get()));
            }
        }
        if (record->content) {
            contents.append(record->content.get());
        }
        rootOf()->appendChild(&node);
    }
}

bool ViewScene::State::updateDrivers(Record& record) {
    const LyrObjectPtr plugin(surface ? linkOf(record.object.get(), Lyr::RenderPlugin) : nullptr);
    if (plugin == record.plugin) {
        return false;
    }
    if (record.node().getRenderingDriverCount() > 0) {
        // The driver at work stays until the frame ends: the object gets a new node.
        auto fresh = std::make_shared<Record>(record.object.get(), rootOf(), cameraOf());
        const auto place =
            std::find_if(records.begin(), records.end(), [&](const auto& at) { return at.get() == &record; });
        auto old = std::exchange(*place, fresh);
        fresh->sceneNode = old->sceneNode;
        updateRecord(*fresh);
        discard(std::move(old));
        again = true;
        return true;
    }
    record.plugin = plugin;
    if (plugin) {
        const bool made = plugin->runAction(Lyr::DriverInit, &record.node());
        const std::int64_t drivers = record.node().getRenderingDriverCount();
        record.count.set(plugin->getMetaClass().getModule(), drivers);
        if (!made || drivers == 0) {
            LyrError::emitError(LyrError::Message(plugin.get(), Lyr::WrongType));
        }
    }
    return true;
}

/** True if the object's drivers reported a change. */
bool ViewScene::State::prepare(const std::shared_ptr<Record>& record) {
    ViewportObjectNode& node = record->node();
    const unsigned int before = node.getUpdateFlags();
    node.clearUpdateFlags();
    record->ready.clear();
    for (std::int64_t i = 0; i < node.getRenderingDriverCount() && !record->removed && !dead; ++i) {
        Driver* driver = node.getRenderingDriver(i);
        const LyrTimestamp time = LyrTimestamp::getCurrentTimestamp();
        const bool done = driver->init();
        if (node.getRenderingDriver(i) != driver) {
            break;  // the drivers changed meanwhile: the next frame finds them
        }
        if (!cameraOf()->isSuppressed()) {
            driver->setUpdateTimestamp(time);
        }
        if (done) {
            record->ready.push_back(driver);
        }
    }
    const bool changed = node.getUpdateFlags() != 0;
    node.addUpdateFlags(before);
    return changed;
}

/** Asks each driver, pass by pass, what it covers and what of that is to be drawn anew. */
void ViewScene::State::collectRects() {
    updateRect = drawRequested ? LyrRendering::deviceSquare() : LyrRendering::emptyRect();
    coverage = emptyRects();
    for (const auto& record : Records(records)) {
        forEachDriver(*record, [&](Driver& driver) {
            for (long long pass = FIRST_PASS; pass <= LAST_PASS && record->isReady(&driver); ++pass) {
                DeviceRect& covered = coverage[placeOf(pass)];
                updateRect = LyrRendering::unite(updateRect, driver.getDeviceUpdateRect(pass));
                covered = LyrRendering::unite(covered, driver.getDeviceCoverageRect(pass));
            }
        });
    }
}

void ViewScene::State::drawWith(Record& record, std::int64_t index, long long pass) {
    Driver* driver = record.node().getRenderingDriver(index);
    if (!driver || !record.isReady(driver)) {
        return;
    }
    LyrRendering::applyGlBaseline(cameraOf()->transform());
    LyrRendering::FrameContext context;
    context.camera = cameraOf();
    const bool drawn = driver->renderObject(pass, &context);
    if (!drawn && !record.failed) {
        LyrError::emitError(LyrError::Message(record.object.get(), Lyr::Failed));
    }
    record.failed = record.failed || !drawn;
}

void ViewScene::State::drawPass(const Records& drawn, long long pass) {
    for (const auto& record : drawn) {
        for (std::int64_t i = 0; i < record->node().getRenderingDriverCount(); ++i) {
            drawWith(*record, i, pass);
        }
    }
}

ViewScene::ViewScene(LyrObject* camera, LyrIOC* listener) : d(std::make_shared<State>(camera, listener)) {}

ViewScene::~ViewScene() {
    const std::shared_ptr<State> state = d;
    state->dead = true;
    setSurface(nullptr);
    state->discardAll();
}

void ViewScene::setSurface(Surface* surface) {
    if (surface == d->surface) {
        return;
    }
    if (!surface) {
        if (d->frames > 0) {
            // The frame's end destroys the drivers, when the context may be gone: they let go of it now.
            d->withContext([this](bool isCurrent) {
                if (isCurrent) {
                    releaseContext();
                }
            });
        }
        d->discardAll();
    }
    d->surface = surface;
    synchronize();
}

SceneGraphObjectNode* ViewScene::getSceneNode() const noexcept {
    return d->rootOf();
}

CameraNode* ViewScene::getCameraNode() const noexcept {
    return d->cameraOf();
}

std::int64_t ViewScene::getViewportNodeCount() const noexcept {
    return static_cast<std::int64_t>(d->records.size());
}

ViewportObjectNode* ViewScene::getViewportNode(std::int64_t index) const noexcept {
    return index >= 0 && index < getViewportNodeCount() ? &d->records[static_cast<std::size_t>(index)]->node()
                                                        : nullptr;
}

void ViewScene::synchronize() {
    const std::shared_ptr<State> state = d;
    state->synchronize();
}

void ViewScene::requestDraw() noexcept {
    d->drawRequested = true;
}

ViewScene::Preparation ViewScene::prepare() {
    // Handlers may destroy the view: what is needed until the end is held here.
    const std::shared_ptr<State> state = d;
    const FrameScope<State> frame(*state);
    state->synchronize();
    Preparation result;
    for (const auto& record : Records(state->records)) {
        if (!state->dead && !record->removed && record->rendering) {
            result.changed = state->prepare(record) || result.changed;
        }
    }
    if (state->dead) {
        return {};
    }
    result.mustDraw = state->drawRequested;
    for (const auto& record : state->records) {
        result.mustDraw = result.mustDraw || record->node().getUpdateFlags() != 0;
    }
    state->collectRects();
    result.mustDraw = result.mustDraw || !LyrRendering::isEmpty(state->updateRect);
    return result;
}

DeviceRect ViewScene::getUpdateRect() const noexcept {
    return d->updateRect;
}

DeviceRect ViewScene::getCoverageRect(long long pass) const {
    return pass >= FIRST_PASS && pass <= LAST_PASS ? d->coverage[placeOf(pass)] : LyrRendering::emptyRect();
}

void ViewScene::draw(const LyrRGBA<float>& background, const std::function<void()>& marks) {
    const std::shared_ptr<State> state = d;
    const FrameScope<State> frame(*state);
    state->drawing = true;
    LyrRendering::applyGlBaseline(state->cameraOf()->transform());
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(background.red, background.green, background.blue, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const Records drawn = state->records;
    for (long long pass = FIRST_PASS; pass <= LAST_PASS; ++pass) {
        state->drawPass(drawn, pass);
        if (pass == LyrRendering::MARK_PASS && marks) {
            LyrRendering::applyGlBaseline(state->cameraOf()->transform());
            marks();
        }
    }
    // What blends writes alpha too; composed over a window it would shine through.
    LyrRendering::applyGlBaseline(state->cameraOf()->transform());
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    for (const auto& record : drawn) {
        record->node().clearUpdateFlags();
    }
    state->drawRequested = false;
    state->drawing = false;
}

void ViewScene::releaseContext() {
    for (const auto& record : Records(d->records)) {
        forEachDriver(*record, [](Driver& driver) { driver.cleanup(); });
    }
    for (const auto& record : Records(d->discarded)) {
        forEachDriver(*record, [](Driver& driver) { driver.cleanup(); });
    }
    d->drawRequested = true;
}

}  // namespace LyrSceneGraph
