#include <analysis/TolerancePresets.h>
#include <analysis/ToleranceTable.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetRegistry.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace {

LyqPresetDefaultHandler* handler() {
    return dynamic_cast<LyqPresetDefaultHandler*>(LyqPresetRegistry::instance().findHandler(Lyr::ColorLookupTable));
}

/** The table of a preset's file; null if there is none, or none that judges. */
LyrObjectPtr loadTolerance(const std::string& path) {
    LyrObjectPtr preset;
    LyrObjectFile::Report report;
    if (!LyrObjectFile::load(path, preset, report, {"LyrPresetColortableProxyObject"}, Lyr::TransientScope)) {
        return {};
    }
    const auto link = lyrGetValue<LyrObjectLink>(preset.get(), Lyr::ColorLookupTable, LyrObjectLink());
    auto* table = dynamic_cast<LyrColorLookupTable*>(link.getLink());
    return table && lysIsTolerance(*table) ? LyrObjectPtr(table) : LyrObjectPtr();
}

}  // namespace

const std::vector<TolerancePresets::Entry>& TolerancePresets::update() {
    mEntries.clear();
    for (const Lyrenum kind : {Lyr::UserPreset, Lyr::InstalledPreset}) {
        add(kind);
    }
    std::stable_partition(mEntries.begin(), mEntries.end(), [](const Entry& entry) { return entry.isOfVolumes; });
    return mEntries;
}

void TolerancePresets::add(Lyrenum kind) {
    LyqPresetDefaultHandler* presets = handler();
    const LyqPresetStore* store = presets ? presets->store(kind) : nullptr;
    if (!store) {
        return;
    }
    for (const LyqPresetStore::Entry& each : store->list()) {
        if (const LyrObjectPtr table = each.problem.isNull() ? read(each.path) : LyrObjectPtr()) {
            const auto quantity = lyrGetValue<Lyrenum>(table.get(), Lyr::Quantity, -1);
            mEntries.push_back({each.name, kind, quantity == Lyr::Volume, table});
        }
    }
}

LyrObjectPtr TolerancePresets::read(const std::string& path) {
    std::error_code problem;
    const auto time = std::filesystem::last_write_time(path, problem).time_since_epoch();
    const std::int64_t changed = std::chrono::duration_cast<std::chrono::nanoseconds>(time).count();
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(path, problem));
    const auto known = mFiles.find(path);
    if (known != mFiles.end() && known->second.changed == changed && known->second.size == size) {
        return known->second.table;
    }
    LyrObjectPtr table = loadTolerance(path);
    mFiles[path] = {changed, size, table};
    return table;
}
