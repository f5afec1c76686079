#include <analysis/TableBoundaries.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <algorithm>
#include <cmath>

std::vector<float> lysBoundaries(const LyrColorLookupTable* table) {
    LyrValueArrayOPCache<float> list;
    constexpr std::size_t LEAST = 2;
    if (!table || !list.load(table, Lyr::PositionList) || list.items().size() < LEAST ||
        !std::all_of(list.items().begin(), list.items().end(), [](float value) { return std::isfinite(value); }) ||
        !std::is_sorted(list.items().begin(), list.items().end())) {
        return {};
    }
    return list.items();
}
