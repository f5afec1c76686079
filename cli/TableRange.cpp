#include "TableRange.h"

#include "Failure.h"
#include "Numbers.h"

#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <cmath>

namespace lys::cli {

namespace {

double parseBound(std::string_view bound, const std::string& text) {
    const std::optional<double> value = parseDouble(bound);
    if (!value || !std::isfinite(static_cast<float>(*value))) {
        throwUnusable("--range " + text + ": '" + std::string(bound) + "' is no number within a float's range");
    }
    return *value;
}

}  // namespace

TableRange TableRange::parse(const std::string& text) {
    if (text == "auto") {
        return {true, 0.0, 0.0};
    }
    const std::vector<std::string_view> bounds = splitText(text, ',');
    if (bounds.size() != 2) {
        throwUnusable("--range " + text + ": give 'auto' or two numbers A,B");
    }
    const TableRange range{false, parseBound(bounds[0], text), parseBound(bounds[1], text)};
    if (!(range.low < range.high)) {
        throwUnusable("--range " + text + ": the first number must be below the second");
    }
    return range;
}

void TableRange::apply(LyrColorLookupTable& table) const {
    LyrValueArrayOPCache<float> positions;
    positions.load(&table, Lyr::PositionList);
    std::vector<float>& items = positions.items();
    if (items.size() < 2 || items.front() == items.back()) {
        throwUnusable("--range: the first and last position of the table must differ to be stretched over a range");
    }
    const double first = static_cast<double>(items.front());
    const double last = static_cast<double>(items.back());
    for (float& item : items) {
        const double position = static_cast<double>(item);
        const double moved = position == last ? high : low + (position - first) * (high - low) / (last - first);
        item = static_cast<float>(moved);
    }
    if (!positions.store(&table, Lyr::PositionList)) {
        throwFailed("--range: the table's positions could not be changed");
    }
}

}  // namespace lys::cli
