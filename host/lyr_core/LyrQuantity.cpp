#include <lyr_core/LyrOutOfMemory_p.h>
#include <lyr_core/LyrQuantity.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>
#include <string_view>

#include <lyr_core/LyrError.h>
#include <lyr_core/LyrI18n.h>
#include <lyr_core/LyrUnitIdentifiers.h>

namespace {

constexpr const char* translationContext = "Quantity";

// 1 unit is numerator / denominator internal units, two numbers that double holds exactly (but for π).
struct Unit {
    const char* name;
    const char* symbol;
    double numerator;
    double denominator;
    std::array<const char*, 2> otherSpellings{};

    // By name, since plug-ins register some of the names too and the first registration fixes the number.
    Lyrenum id() const { return Lyrenum(name, false); }
};

struct Quantity {
    const char* name;
    std::span<const Unit> units;  // the internal one first

    Lyrenum id() const { return Lyrenum(name, false); }
};

// The inch is 25.4 mm and the foot 12 inches by definition (international yard, 1959); a mil is 1/1000 inch.
constexpr Unit lengthUnits[] = {
    {"Millimeter", "mm", 1, 1},
    {"Centimeter", "cm", 10, 1},
    {"Meter", "m", 1000, 1},
    {"Micrometer", "\u00b5m", 1, 1000, {"um", "\u03bcm"}},
    {"Nanometer", "nm", 1, 1e6},
    {"Inch", "in", 254, 10, {"inch", "\""}},
    {"Foot", "ft", 3048, 10, {"foot", "'"}},
    {"Mil", "mil", 254, 10000, {"thou"}},
};
constexpr Unit areaUnits[] = {
    {"SquareMillimeter", "mm\u00b2", 1, 1, {"mm2", "mm^2"}},
    {"SquareCentimeter", "cm\u00b2", 100, 1, {"cm2", "cm^2"}},
    {"SquareMeter", "m\u00b2", 1e6, 1, {"m2", "m^2"}},
    {"SquareMicrometer", "\u00b5m\u00b2", 1, 1e6, {"um2", "um^2"}},
    {"SquareInch", "in\u00b2", 64516, 100, {"in2", "in^2"}},
    {"SquareFoot", "ft\u00b2", 9290304, 100, {"ft2", "ft^2"}},
};
constexpr Unit volumeUnits[] = {
    {"CubicMillimeter", "mm\u00b3", 1, 1, {"mm3", "mm^3"}},
    {"CubicCentimeter", "cm\u00b3", 1000, 1, {"cm3", "cm^3"}},
    {"CubicMeter", "m\u00b3", 1e9, 1, {"m3", "m^3"}},
    {"CubicMicrometer", "\u00b5m\u00b3", 1, 1e9, {"um3", "um^3"}},
    {"CubicInch", "in\u00b3", 16387064, 1000, {"in3", "in^3"}},
    {"CubicFoot", "ft\u00b3", 28316846592, 1000, {"ft3", "ft^3"}},
    {"Liter", "l", 1e6, 1, {"L"}},
};
constexpr Unit angleUnits[] = {
    {"Radian", "rad", 1, 1},
    {"Degree", "\u00b0", std::numbers::pi, 180, {"deg"}},
};
constexpr Unit percentUnits[] = {{"Percent", "%", 1, 1}};

constexpr Quantity quantities[] = {
    {"Length", lengthUnits}, {"Area", areaUnits},       {"Volume", volumeUnits},
    {"Angle", angleUnits},   {"Percent", percentUnits}, {"Number", {}},
};

const Quantity* findQuantity(Lyrenum id) {
    const auto* found = std::find_if(std::begin(quantities), std::end(quantities),
                                     [&](const Quantity& quantity) { return int(id) != -1 && quantity.id() == id; });
    return found == std::end(quantities) ? nullptr : found;
}

template <class Predicate>
const Unit* findUnitIn(const Quantity* quantity, Predicate matches) {
    if (quantity == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(quantity->units.begin(), quantity->units.end(), matches);
    return found == quantity->units.end() ? nullptr : &*found;
}

const Unit* findUnitIn(const Quantity* quantity, Lyrenum id) {
    return findUnitIn(quantity, [&](const Unit& unit) { return int(id) != -1 && unit.id() == id; });
}

const Unit* findAnyUnit(Lyrenum id) {
    for (const Quantity& quantity : quantities) {
        if (const Unit* unit = findUnitIn(&quantity, id)) {
            return unit;
        }
    }
    return nullptr;
}

bool isSpelling(const Unit& unit, std::string_view text) {
    const auto matches = [&](const char* spelling) { return spelling != nullptr && text == spelling; };
    return matches(unit.symbol) || matches(unit.name) ||
           std::any_of(unit.otherSpellings.begin(), unit.otherSpellings.end(), matches);
}

// The product comes first, so that 90° is 90 π / 180; only where it overflows the quotient does.
double scaled(double value, double factor, double divisor) {
    const double product = value * factor;
    return std::isfinite(product) ? product / divisor : value / divisor * factor;
}

// The unit to convert by; null for the internal unit, and with a report for a unit of something else.
const Unit* unitForConversion(Lyrenum quantity, Lyrenum unit) {
    if (int(unit) == -1) {
        return nullptr;
    }
    const Unit* const found = findUnitIn(findQuantity(quantity), unit);
    if (found == nullptr) {
        LyrError::emitError(LyrError::Message(Lyr::InvalidParameters));
    }
    return found;
}

}  // namespace

std::vector<Lyrenum> LyrQuantity::getQuantities() {
    return lyrOrNothing([] {
        std::vector<Lyrenum> ids;
        for (const Quantity& quantity : quantities) {
            ids.push_back(quantity.id());
        }
        return ids;
    });
}

bool LyrQuantity::isQuantity(Lyrenum id) {
    return findQuantity(id) != nullptr;
}

Lyrenum LyrQuantity::getUnit(Lyrenum quantity) {
    const Quantity* const found = findQuantity(quantity);
    return found == nullptr || found->units.empty() ? Lyrenum(-1) : found->units.front().id();
}

std::vector<Lyrenum> LyrQuantity::getUnits(Lyrenum quantity) {
    return lyrOrNothing([&] {
        std::vector<Lyrenum> ids;
        if (const Quantity* found = findQuantity(quantity)) {
            for (const Unit& unit : found->units) {
                ids.push_back(unit.id());
            }
        }
        return ids;
    });
}

bool LyrQuantity::isUnitOf(Lyrenum unit, Lyrenum quantity) {
    return findUnitIn(findQuantity(quantity), unit) != nullptr;
}

Lyrenum LyrQuantity::findUnit(Lyrenum quantity, const LyrString& text) {
    const Unit* const found =
        findUnitIn(findQuantity(quantity), [&](const Unit& unit) { return isSpelling(unit, text.view()); });
    return found == nullptr ? Lyrenum(-1) : found->id();
}

double LyrQuantity::unitToInternal(double value, Lyrenum quantity, Lyrenum unit) {
    const Unit* const found = unitForConversion(quantity, unit);
    return found == nullptr ? value : scaled(value, found->numerator, found->denominator);
}

double LyrQuantity::internalToUnit(double value, Lyrenum quantity, Lyrenum unit) {
    const Unit* const found = unitForConversion(quantity, unit);
    return found == nullptr ? value : scaled(value, found->denominator, found->numerator);
}

LyrString LyrQuantity::getUnitSymbol(Lyrenum unit) {
    const Unit* const found = findAnyUnit(unit);
    return lyrOrNothing([&] { return found == nullptr ? LyrString() : LyrString(found->symbol); });
}

LyrString LyrQuantity::getUnitName(Lyrenum unit) {
    const Unit* const found = findAnyUnit(unit);
    return found == nullptr ? LyrString() : LyrI18n::translate(translationContext, found->name);
}

LyrString LyrQuantity::getQuantityName(Lyrenum quantity) {
    const Quantity* const found = findQuantity(quantity);
    return found == nullptr ? LyrString() : LyrI18n::translate(translationContext, found->name);
}
