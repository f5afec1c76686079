#include "TableSource.h"

#include "Failure.h"
#include "JsonText.h"
#include "Messages.h"
#include "PresetLibrary.h"

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace lys::cli {

namespace {

constexpr const char* TABLE_CLASS = "LyrColorLookupTable";
constexpr const char* PRESET_CLASS = "LyrPresetColortableProxyObject";

/** All names for a message, at most so many. */
std::string knownNames(PresetLibrary& library) {
    constexpr std::size_t most = 20;
    const std::vector<PresetLibrary::Entry> entries = library.list();
    std::string known;
    for (std::size_t i = 0; i < entries.size() && i < most; ++i) {
        known += (known.empty() ? "" : ", ") + JsonText::quoted(entries[i].name);
    }
    return known + (entries.size() > most ? ", ..." : "");
}

}  // namespace

TableSource::TableSource(const std::string& nameOrPath) : mName(nameOrPath) {
    std::error_code error;
    const bool exists = std::filesystem::exists(nameOrPath, error);
    // A folder is no table; it does not hide a preset of its name.
    const bool isFolder = exists && std::filesystem::is_directory(nameOrPath, error);
    // No file has a name that is too long, but a preset may.
    if ((exists && !isFolder) || (error && error != std::errc::filename_too_long)) {
        load();
        return;
    }
    PresetLibrary library;
    const Lyrenum kind = library.find(nameOrPath);
    mBuiltIn = kind == Lyr::DefaultPreset;
    if (kind == -1 && isFolder) {
        load();
        return;
    }
    if (kind == -1) {
        throwUnusable(printable(nameOrPath) + ": there is no such file, and no preset of this name; presets are " +
                      knownNames(library));
    }
    mTable = LyrObjectRefPtr(TABLE_CLASS, Lyr::DocumentScope);
    if (!mTable) {
        throwFailed("there is not enough memory for a table");
    }
    library.apply(nameOrPath, *mTable);
}

void TableSource::load() {
    LyrObjectFile::Report report;
    LyrObjectPtr object;
    if (!LyrObjectFile::load(mName, object, report, {TABLE_CLASS, PRESET_CLASS})) {
        throwUnusable(report.message.utf8());
    }
    if (!report.message.isEmpty()) {
        warn(report.message.utf8());
    }
    for (const LyrString& warning : report.warnings) {
        warn(mName + ": " + warning.utf8());
    }
    const auto table = lyrGetValue(object.get(), Lyr::ColorLookupTable, LyrObjectLink(object.get(), nullptr, -1));
    const bool isLacking =
        std::find(report.missing.begin(), report.missing.end(), Lyr::ColorLookupTable) != report.missing.end();
    if (isLacking || !table.linkIsOfType(TABLE_CLASS)) {
        throwUnusable(mName + ": the preset holds no table");
    }
    mTable = LyrObjectPtr(table.getLink());
    checkSections();
}

// Object files let a list of links hold objects of any class.
void TableSource::checkSections() const {
    LyrValueArrayOPCache<LyrObjectLink> sections;
    sections.load(mTable.get(), Lyr::SectionList);
    for (std::size_t i = 0; i < sections.items().size(); ++i) {
        const LyrObject* section = sections.items()[i].getLink();
        if (section && !section->getMetaClass().isOfType(LyrColorLookupTable::Section::metaClass())) {
            throwUnusable(mName + ": SectionList[" + std::to_string(i) + "]: a " +
                          section->getMetaClass().getClassName() + " is no section of a table");
        }
    }
}

bool TableSource::isPreset(const std::string& name) {
    return PresetLibrary().find(name) != -1;
}

}  // namespace lys::cli
