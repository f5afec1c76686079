#include "TableSource.h"

#include "Failure.h"
#include "Messages.h"

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

/** A preset that is part of the program: the table that a new object is, its middle section of another type. */
struct BuiltInPreset {
    const char* name;
    const Lyrenum& middle;
};

// The identifiers get their numbers when their library is loaded, so only references to them are kept.
const BuiltInPreset BUILT_IN[] = {{"Rainbow", Lyr::Rainbow}, {"Reverse Rainbow", Lyr::InvertedRainbow}};

LyrObjectPtr makeBuiltIn(const BuiltInPreset& preset) {
    const LyrObjectRefPtr table(TABLE_CLASS, Lyr::DocumentScope);
    LyrObjectLink middle;
    const LyrValueArrayOPPtr<LyrLinkListIF> sections(table.get(), Lyr::SectionList);
    if (!sections || !sections->getArrayItems(1, 1, &middle) ||
        !lyrSetValue(middle.getLink(), Lyr::Type, preset.middle)) {
        throwFailed(std::string("the preset ") + preset.name + " could not be made");
    }
    return table;
}

const BuiltInPreset* findBuiltIn(const std::string& name) {
    const auto* found =
        std::find_if(std::begin(BUILT_IN), std::end(BUILT_IN), [&](const BuiltInPreset& p) { return name == p.name; });
    return found == std::end(BUILT_IN) ? nullptr : found;
}

}  // namespace

TableSource::TableSource(const std::string& nameOrPath) : mName(nameOrPath) {
    std::error_code error;
    if (std::filesystem::exists(nameOrPath, error) || error) {
        load();
    } else if (const BuiltInPreset* preset = findBuiltIn(nameOrPath)) {
        mTable = makeBuiltIn(*preset);
        mBuiltIn = true;
    } else {
        std::string known;
        for (const std::string& name : presetNames()) {
            known += (known.empty() ? "\"" : ", \"") + name + '"';
        }
        throwUnusable(nameOrPath + ": there is no such file, and no preset of this name; presets are " + known);
    }
}

void TableSource::load() {
    LyrObjectFile::Report report;
    if (!LyrObjectFile::load(mName, mTable, report, {TABLE_CLASS})) {
        throwUnusable(report.message.utf8());
    }
    if (!report.message.isEmpty()) {
        warn(report.message.utf8());
    }
    for (const LyrString& warning : report.warnings) {
        warn(mName + ": " + warning.utf8());
    }
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

std::vector<std::string> TableSource::presetNames() {
    std::vector<std::string> names;
    for (const BuiltInPreset& preset : BUILT_IN) {
        names.emplace_back(preset.name);
    }
    return names;
}

bool TableSource::isPreset(const std::string& name) {
    return findBuiltIn(name) != nullptr;
}

}  // namespace lys::cli
