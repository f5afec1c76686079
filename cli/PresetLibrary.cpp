#include "PresetLibrary.h"

#include "Failure.h"
#include "JsonText.h"
#include "Messages.h"

#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <algorithm>

namespace lys::cli {

namespace {

constexpr const char* PROXY_CLASS = "LyrPresetColortableProxyObject";
const Lyrenum KINDS[] = {Lyr::UserPreset, Lyr::InstalledPreset, Lyr::DefaultPreset};

void warnOf(const LyrString& message) {
    if (!message.isEmpty()) {
        warn(message.view());
    }
}

}  // namespace

std::string printable(const std::string& name) {
    const bool breaks =
        std::any_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; });
    return breaks ? JsonText::quoted(name) : name;
}

PresetLibrary::PresetLibrary()
    : mHandler(new LyqPresetColortableHandler(Lyr::ColorLookupTable, LyrString("Colortable"))) {
    if (!mHandler) {
        throwFailed("there is not enough memory for the presets");
    }
}

const char* PresetLibrary::wordFor(Lyrenum kind) {
    return kind == Lyr::UserPreset ? "user" : kind == Lyr::InstalledPreset ? "installed" : "built-in";
}

std::vector<PresetLibrary::Entry> PresetLibrary::list() {
    std::vector<Entry> result;
    for (const Lyrenum kind : KINDS) {
        if (const LyqPresetStore* store = handler().store(kind)) {
            LyrString message;
            for (const LyqPresetStore::Entry& entry : store->list(&message)) {
                result.push_back({entry.name.utf8(), kind, entry.problem.utf8()});
            }
            warnOf(message);
            continue;
        }
        LyrStringList names;
        handler().listPresets(names, kind);
        for (const LyrString& name : names) {
            result.push_back({name.utf8(), kind, {}});
        }
    }
    return result;
}

Lyrenum PresetLibrary::require(const std::string& name) {
    const Lyrenum kind = find(name);
    const LyrString problem = handler().getMessage();
    if (problem != mTold) {
        mTold = problem;
        warnOf(problem);
    }
    if (kind == -1) {
        throwUnusable(printable(name) + ": there is no preset of this name; see colortable presets list");
    }
    return kind;
}

void PresetLibrary::apply(const std::string& name, LyrObject& table) {
    const Lyrenum kind = require(name);
    handler().setApplicationObject(&table);
    if (!handler().applyPreset(LyrString(name), kind)) {
        throwUnusable(handler().getMessage().utf8());
    }
    warnOf(handler().getMessage());
}

void PresetLibrary::loadProxy(const std::string& name, Lyrenum kind, Stored& stored) {
    LyrObjectFile::Report report;
    if (LyqPresetStore* store = handler().store(kind)) {
        stored.proxy = store->load(LyrString(name), report, Lyr::TransientScope);
        if (!stored.proxy) {
            throwUnusable(report.message.utf8());
        }
        warnOf(report.message);
        for (const LyrString& warning : report.warnings) {
            warnOf(warning);
        }
        for (const Lyrenum missing : report.missing) {
            stored.proxy->removeProperty(missing);
        }
        return;
    }
    // A built-in preset is made anew each time: applied to the table of a new proxy.
    stored.proxy = LyrObjectRefPtr(PROXY_CLASS, Lyr::TransientScope);
    const auto table = lyrGetValue<LyrObjectLink>(stored.proxy.get(), Lyr::ColorLookupTable, LyrObjectLink());
    if (table.isNull()) {
        throwFailed("there is not enough memory for the preset");
    }
    apply(name, *table.getLink());
    stored.proxy->setNameTemplate(name.c_str());
}

PresetLibrary::Stored PresetLibrary::load(const std::string& name) {
    Stored stored;
    loadProxy(name, require(name), stored);
    const auto table = lyrGetValue<LyrObjectLink>(stored.proxy.get(), Lyr::ColorLookupTable, LyrObjectLink());
    if (!table.linkIsOfType("LyrColorLookupTable")) {
        throwUnusable(printable(name) + ": the preset holds no table");
    }
    stored.table = LyrObjectPtr(table.getLink());
    stored.isAbsolute = lyrGetValue<Lyrenum>(stored.proxy.get(), Lyr::AbsoluteMode, 1) != 0;
    stored.referenceRange = LyrInterval<float, float>(
        lyrGetValue(stored.proxy.get(), Lyr::ReferenceRange, LyrInterval<float, float>::EMPTY().toPair()));
    return stored;
}

}  // namespace lys::cli
