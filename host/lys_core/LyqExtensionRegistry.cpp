#include <lyr_core/LyrModuleLoader.h>
#include <lys_core/LyqActionExtension.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqDockExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayerExtension.h>

#include <algorithm>
#include <utility>

namespace {

/** Which kind an extension is of; 0 for one that only plug-ins know. */
int kindOf(const LyqExtension& extension) {
    return dynamic_cast<const LyqDockExtension*>(&extension)       ? 1
           : dynamic_cast<const LyqActionExtension*>(&extension)   ? 2
           : dynamic_cast<const LyqLayerExtension*>(&extension)    ? 3
           : dynamic_cast<const LyqAnalysisExtension*>(&extension) ? 4
                                                                   : 0;
}

}  // namespace

struct LyqExtensionRegistry::Private : LyrModuleLoader::UnloadGuard {
    explicit Private(LyqExtensionRegistry& owner) : registry(owner) {}

    LyrString reasonToStay(const char*) override { return {}; }
    // A module's own clean-up has removed all; what it forgot must not outlive its code.
    void moduleGoes(const char* module) override { registry.removeAllFrom(module); }

    LyqExtensionRegistry& registry;
    std::vector<std::unique_ptr<LyqExtension>> extensions;
};

LyqExtensionRegistry::LyqExtensionRegistry() : d(new Private(*this)) {
    LyrModuleLoader::addUnloadGuard(d.get());
}

LyqExtensionRegistry::~LyqExtensionRegistry() {
    LyrModuleLoader::removeUnloadGuard(d.get());
}

LyqExtensionRegistry& LyqExtensionRegistry::instance() {
    LyrModuleLoader::getLoadedModules();  // the loader has to outlive its guard
    static LyqExtensionRegistry registry;
    return registry;
}

bool LyqExtensionRegistry::add(std::unique_ptr<LyqExtension> extension) {
    if (!extension || extension->id().isEmpty() || extension->module().isEmpty()) {
        return false;
    }
    const int kind = kindOf(*extension);
    const bool taken = std::any_of(d->extensions.begin(), d->extensions.end(), [&](const auto& other) {
        return other->id() == extension->id() && kindOf(*other) == kind;
    });
    if (taken) {
        return false;
    }
    d->extensions.push_back(std::move(extension));
    Q_EMIT added(d->extensions.back().get());
    return true;
}

bool LyqExtensionRegistry::remove(const LyqExtension* extension) {
    for (std::size_t i = 0; i < d->extensions.size(); ++i) {
        if (d->extensions[i].get() == extension) {
            removeAt(i);
            return true;
        }
    }
    return false;
}

int LyqExtensionRegistry::removeAllFrom(const char* module) {
    const QString name = QString::fromUtf8(module);
    int count = 0;
    // Listeners may remove others meanwhile: begin anew after each.
    for (bool found = true; found;) {
        found = false;
        for (std::size_t i = d->extensions.size(); i-- > 0 && !found;) {
            if (d->extensions[i]->module() == name) {
                removeAt(i);
                ++count;
                found = true;
            }
        }
    }
    return count;
}

void LyqExtensionRegistry::removeAt(std::size_t index) {
    // Out of the list first: a listener that asks for extensions does not find it any more.
    const std::unique_ptr<LyqExtension> gone = std::move(d->extensions[index]);
    d->extensions.erase(d->extensions.begin() + static_cast<std::ptrdiff_t>(index));
    Q_EMIT aboutToRemove(gone.get());
}

void LyqExtensionRegistry::announceChange(const LyqExtension* extension) {
    const auto all = extensions();
    const auto found = std::find(all.begin(), all.end(), extension);
    if (found != all.end()) {
        Q_EMIT changed(*found);
    }
}

std::vector<LyqExtension*> LyqExtensionRegistry::extensions() const {
    std::vector<LyqExtension*> all;
    all.reserve(d->extensions.size());
    for (const auto& extension : d->extensions) {
        all.push_back(extension.get());
    }
    return all;
}
