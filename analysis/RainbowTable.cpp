#include <analysis/RainbowTable.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <algorithm>
#include <cmath>

LyrObjectPtr lysRainbowTable(LyrVolume::ValueRange range, Lyrenum quantity) {
    if (range.isEmpty()) {
        range = {0.0f, 1.0f};
    } else if (range.low == range.high) {
        const float width = std::max(std::fabs(range.low) * 1e-3f, 1e-3f);
        range = {range.low - width, range.high + width};
    }
    // A new table is a rainbow between two positions. Nobody holds it yet, so that undo hears nothing of its making.
    auto* made = new LyrColorLookupTable;
    const float positions[] = {range.low, range.high};
    if (const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> list(made, Lyr::PositionList); list) {
        list->initArray(0, 1, positions);
    }
    lyrSetValue<Lyrenum>(made, Lyr::Quantity, quantity);
    return LyrObjectPtr(made);
}
