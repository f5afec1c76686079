#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrModuleLoader.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyrWorkspace.h>

#include <algorithm>
#include <cstring>

namespace {

LyqLayer* layerOf(const LyrObjectPtr& object) {
    return static_cast<LyqLayer*>(object.get());
}

/** The views draw what the workspace lists. */
void showInViews(LyrObject* layer, bool shown) {
    if (LyrWorkspace* workspace = LyqApplication::instance().workspace()) {
        shown ? workspace->addLayer(layer) : workspace->removeLayer(layer);
    }
}

}  // namespace

struct LyqSession::Private : LyrModuleLoader::UnloadGuard {
    explicit Private(LyqSession& owner) : session(owner) {}

    // Objects of a module keep it loaded by themselves.
    LyrString reasonToStay(const char*) override { return {}; }
    void moduleGoes(const char* module) override {
        session.removeLayersOf(module);
        if (document && std::strcmp(document->getMetaClass().getModule(), module) == 0) {
            session.setDocument(nullptr);
        }
    }

    LyqSession& session;
    LyrObjectPtr document;
    std::vector<LyrObjectPtr> layers;
    LyrObjectPtr active;
    std::vector<LyqReport> reports;
};

LyqSession::LyqSession() : d(new Private(*this)) {
    LyrModuleLoader::addUnloadGuard(d.get());
}

LyqSession::~LyqSession() {
    LyrModuleLoader::removeUnloadGuard(d.get());
}

LyqSession& LyqSession::instance() {
    LyqApplication::instance();  // and the loader have to outlive the session
    static LyqSession session;
    return session;
}

LyrObject* LyqSession::document() const {
    return d->document.get();
}

void LyqSession::setDocument(LyrObject* document) {
    const LyrObjectPtr next(document);
    if (d->document == next) {
        return;
    }
    if (!d->reports.empty()) {
        d->reports.clear();
        Q_EMIT reportsChanged();
    }
    if (!d->layers.empty()) {
        // The last references go after the listeners have let go.
        const std::vector<LyrObjectPtr> gone = std::move(d->layers);
        d->layers.clear();
        for (const LyrObjectPtr& layer : gone) {
            showInViews(layer.get(), false);
        }
        updateActiveLayer();
        Q_EMIT layersChanged();
    }
    const LyrObjectPtr before = d->document;
    d->document = next;
    Q_EMIT documentChanged();
}

std::vector<LyqLayer*> LyqSession::layers() const {
    std::vector<LyqLayer*> all;
    all.reserve(d->layers.size());
    for (const LyrObjectPtr& layer : d->layers) {
        all.push_back(layerOf(layer));
    }
    return all;
}

bool LyqSession::addLayer(LyqLayer* layer) {
    const LyrObjectPtr held(layer);
    if (!layer || std::find(d->layers.begin(), d->layers.end(), held) != d->layers.end()) {
        return false;
    }
    d->layers.push_back(held);
    showInViews(layer, true);
    Q_EMIT layersChanged();
    if (layer->isColored()) {
        setActiveLayer(layer);
    }
    return true;
}

bool LyqSession::removeLayer(LyqLayer* layer) {
    const LyrObjectPtr held(layer);
    const auto found = std::find(d->layers.begin(), d->layers.end(), held);
    if (!layer || found == d->layers.end()) {
        return false;
    }
    d->layers.erase(found);
    showInViews(layer, false);
    updateActiveLayer();
    Q_EMIT layersChanged();
    return true;
}

int LyqSession::removeLayersOf(const char* module) {
    const std::vector<LyrObjectPtr> all = d->layers;
    int count = 0;
    for (const LyrObjectPtr& layer : all) {
        if (std::strcmp(layer->getMetaClass().getModule(), module) == 0 && removeLayer(layerOf(layer))) {
            ++count;
        }
    }
    return count;
}

LyqLayer* LyqSession::activeLayer() const {
    return d->active ? layerOf(d->active) : nullptr;
}

bool LyqSession::setActiveLayer(LyqLayer* layer) {
    const LyrObjectPtr held(layer);
    if (!layer || !layer->isColored() || std::find(d->layers.begin(), d->layers.end(), held) == d->layers.end()) {
        return false;
    }
    if (!(d->active == held)) {
        const LyrObjectPtr before = d->active;
        d->active = held;
        Q_EMIT activeLayerChanged();
    }
    return true;
}

/** When the active layer has gone, the topmost coloured one takes its place. */
void LyqSession::updateActiveLayer() {
    if (!d->active || std::find(d->layers.begin(), d->layers.end(), d->active) != d->layers.end()) {
        return;
    }
    const LyrObjectPtr before = d->active;
    const auto next = std::find_if(d->layers.rbegin(), d->layers.rend(),
                                   [](const LyrObjectPtr& layer) { return layerOf(layer)->isColored(); });
    d->active = next != d->layers.rend() ? *next : LyrObjectPtr();
    Q_EMIT activeLayerChanged();
}

const std::vector<LyqReport>& LyqSession::reports() const {
    return d->reports;
}

void LyqSession::addReport(const LyqReport& report) {
    const auto found = std::find_if(d->reports.begin(), d->reports.end(),
                                    [&](const LyqReport& other) { return other.id == report.id; });
    if (found != d->reports.end()) {
        *found = report;
    } else {
        d->reports.push_back(report);
    }
    Q_EMIT reportsChanged();
}
