#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrModuleLoader.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetRegistry.h>

#include <algorithm>
#include <map>
#include <string_view>

struct LyqPresetRegistry::Private : LyrModuleLoader::UnloadGuard {
    std::map<int, Receiver*> receivers;
    std::vector<LyrObjectPtr> kept;

    void drop(std::string_view module) {
        std::vector<LyrObjectPtr> going;
        for (const LyrObjectPtr& handler : kept) {
            if (handler->getMetaClass().getModule() == module) {
                going.push_back(handler);
            }
        }
        std::erase_if(kept, [&](const LyrObjectPtr& handler) {
            return std::find(going.begin(), going.end(), handler) != going.end();
        });
    }

    LyrString reasonToStay(const char*) override { return {}; }
    void aboutToUnload(const char* module) override { drop(module); }
    void moduleGoes(const char* module) override { drop(module); }
};

LyqPresetRegistry::LyqPresetRegistry() : d(new Private) {
    LyrModuleLoader::addUnloadGuard(d.get());
}

LyqPresetRegistry::~LyqPresetRegistry() {
    LyrModuleLoader::removeUnloadGuard(d.get());
}

LyqPresetRegistry::Receiver::~Receiver() {
    instance().remove(this);
}

// Never destroyed: receivers leave it at any time, up to the end of the process.
LyqPresetRegistry& LyqPresetRegistry::instance() {
    static LyqPresetRegistry* const registry = new LyqPresetRegistry;
    return *registry;
}

bool LyqPresetRegistry::add(Lyrenum id, Receiver* receiver) {
    return receiver && d->receivers.emplace(int(id), receiver).first->second == receiver;
}

void LyqPresetRegistry::remove(Receiver* receiver) {
    std::erase_if(d->receivers, [receiver](const auto& entry) { return entry.second == receiver; });
}

LyqPresetRegistry::Receiver* LyqPresetRegistry::find(Lyrenum id) const {
    const auto found = d->receivers.find(int(id));
    return found == d->receivers.end() ? nullptr : found->second;
}

bool LyqPresetRegistry::keep(LyqPresetHandler* handler) {
    const LyrObjectPtr kept(handler);
    if (!kept || handler->getCategory() == -1 || !add(handler->getCategory(), handler)) {
        return false;
    }
    if (std::find(d->kept.begin(), d->kept.end(), kept) == d->kept.end()) {
        d->kept.push_back(kept);
    }
    return true;
}

LyqPresetHandler* LyqPresetRegistry::create(const char* className, Lyrenum category, const char* name) {
    const LyrObjectRefPtr made(className, Lyr::TransientScope);
    auto* handler = dynamic_cast<LyqPresetHandler*>(made.get());
    if (handler) {
        handler->setCategory(category);
        handler->setName(LyrString(name));
    }
    return keep(handler) ? handler : nullptr;
}

bool LyqPresetRegistry::release(Lyrenum category) {
    const LyrObjectPtr going(findHandler(category));
    const auto found = std::find(d->kept.begin(), d->kept.end(), going);
    if (!going || found == d->kept.end()) {
        return false;
    }
    d->kept.erase(found);
    remove(static_cast<LyqPresetHandler*>(going.get()));
    return true;
}

LyqPresetHandler* LyqPresetRegistry::findHandler(Lyrenum category) const {
    return dynamic_cast<LyqPresetHandler*>(find(category));
}
