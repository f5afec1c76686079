#pragma once

#include <ToolkitApplication.h>
#include <colortable/model/ModelTools.h>
#include <colortable/presets/LyqPresetColortableHandler.h>
#include <colortable/presets/LyrPresetColortableProxyObject.h>
#include <lyr_core/LyrInterval.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/TemporaryFolder.h>

#include <QPixmap>

#include <string>
#include <utility>
#include <vector>

namespace presets {

using model::Errors;
using model::Table;
using Interval = LyrInterval<float, float>;

/** The handler with what the host calls within reach. */
class OpenHandler : public LyqPresetColortableHandler {
public:
    explicit OpenHandler(const std::string& folder = "/nonexistent")
        : LyqPresetColortableHandler(Lyr::ColorLookupTable, LyrString("tables")) {
        setPresetFolder(Lyr::UserPreset, folder);
    }
    using LyqPresetColortableHandler::adjustLookupTable;
    using LyqPresetColortableHandler::appToPreset;
    using LyqPresetColortableHandler::createSaveDialogExtension;
    using LyqPresetColortableHandler::getCurrentReferenceRange;
    using LyqPresetColortableHandler::getDescription;
    using LyqPresetColortableHandler::getPresetList;
    using LyqPresetColortableHandler::iocCallback;
    using LyqPresetColortableHandler::loadPreset;
    using LyqPresetColortableHandler::presetToApp;
    using LyqPresetColortableHandler::savePreset;
};

/** A handler for data with a value range: stretches relative presets onto it. */
class StretchingHandler : public OpenHandler {
public:
    using OpenHandler::OpenHandler;
    Interval data;
    std::vector<std::pair<bool, Interval>> adjusted;

    bool adjustLookupTable(bool absolute, const Interval& range) override {
        adjusted.emplace_back(absolute, range);
        if (absolute || range.isEmpty() || data.isEmpty()) {
            return false;
        }
        auto positions = model::listOf<float>(*getApplicationObject(), Lyr::PositionList);
        for (float& position : positions) {
            position = data.low + (position - range.low) / range.getSize() * data.getSize();
        }
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> list(getApplicationObject(), Lyr::PositionList);
        return list->initArray(0, static_cast<long long>(positions.size()) - 1, positions.data());
    }
    Interval getCurrentReferenceRange() override { return data; }
};

/** Everything that a table holds, as its file has it. */
inline std::string textOf(const LyrObject& object) {
    std::string text;
    LyrString message;
    EXPECT_TRUE(LyrObjectFile::write(object, text, &message)) << message.utf8();
    return text;
}

/** A table in which nothing is as a new one has it. */
inline void makeUnusual(Table& table) {
    ASSERT_TRUE(Table::createStepped(&table, -0.1f, 3.3f, 0.7f, Lyr::HueCycle));
    const float positions[] = {-1e-45f, -0.0f, 0.1f, 1.0f / 3.0f, 3.0e38f};
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(&table, Lyr::PositionList)->initArray(0, 4, positions);
    const LyrRGBA<float> colors[] = {{0.1f, 0.2f, 0.3f, 0.4f}};
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrRGBA<float>>>(&table, Lyr::ExtensionColorList)
        ->initArray(0, 0, colors);
    const Lyrenum modes[] = {Lyr::Continue, Lyrenum(123456789)};
    LyrValueArrayOPPtr<LyrValueArrayPropertyIF<Lyrenum>>(&table, Lyr::ExtensionEnumList)->initArray(0, 1, modes);
    lyrSetValue(&table, Lyr::AutoLabel, Lyrenum(0));
    lyrSetValue(&table, Lyr::AutoScale, Lyrenum(0));
    lyrSetValue(&table, Lyr::FiniteMode, LyrValuePair<Lyrenum>(1, 1));
    lyrSetValue(&table, Lyr::Quantity, Lyrenum(Lyr::Volume));
    lyrSetValue(&table, Lyr::MaximumRange, LyrValuePair<float>(-0.0f, 7.25f));
    table.setNameTemplate("A table with ümläuts");
}

class PresetTest : public testing::Test, ToolkitApplication {
protected:
    PresetTest() : table(model::newTable()), handler(new OpenHandler(folder.path())), handlerHandle(handler) {
        handler->setApplicationObject(table.get());
    }
    /** The proxy that a preset's file holds. */
    LyrObjectPtr stored(const char* name) {
        LyrObjectFile::Report report;
        return handler->store(Lyr::UserPreset)->load(name, report, Lyr::TransientScope);
    }

    Errors errors;
    TemporaryFolder folder;
    model::Held<Table> table;
    OpenHandler* handler;
    LyrObjectPtr handlerHandle;
};

}  // namespace presets
