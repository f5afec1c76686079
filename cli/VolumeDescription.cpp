#include "VolumeDescription.h"

#include "JsonText.h"
#include "Numbers.h"

#include <lyr_volume/LyrCasting.h>

namespace lys::cli {

namespace {

constexpr const char* AXIS_NAMES[] = {"x", "y", "z"};

std::string spaced(const LyrVolume::Vector& vector, const std::string& unit) {
    return formatNumber(vector[0]) + ' ' + formatNumber(vector[1]) + ' ' + formatNumber(vector[2]) +
           (unit.empty() ? "" : ' ' + unit);
}

void addWalls(JsonText& json, const LyrCasting::Truth& truth) {
    json.begin('[', "walls");
    for (const LyrCasting::Wall& wall : truth.walls) {
        json.begin('{');
        json.addNumbers("low", wall.low);
        json.addNumbers("high", wall.high);
        json.add("thickness", wall.thickness);
        json.end();
    }
    json.end();
}

void addBores(JsonText& json, const LyrCasting::Truth& truth) {
    json.begin('[', "bores");
    for (const LyrCasting::Bore& bore : truth.bores) {
        json.begin('{');
        json.add("axis", AXIS_NAMES[static_cast<std::size_t>(bore.axis)]);
        json.addNumbers("from", bore.from);
        json.addNumbers("to", bore.to);
        json.add("radius", bore.radius);
        json.end();
    }
    json.end();
}

void addPores(JsonText& json, const LyrCasting::Truth& truth) {
    json.begin('[', "pores");
    for (const LyrCasting::Pore& pore : truth.pores) {
        json.begin('{');
        json.addNumbers("center", pore.center);
        json.addNumbers("radii", pore.radii);
        json.add("volume", pore.volume);
        json.end();
    }
    json.end();
}

void addTruth(JsonText& json, const LyrCasting::Truth& truth) {
    json.begin('{', "truth");
    json.add("unit", "mm");
    json.add("edge", truth.edge);
    json.add("air", truth.air);
    json.add("material", truth.material);
    json.addNumbers("blockLow", truth.blockLow);
    json.addNumbers("blockHigh", truth.blockHigh);
    addWalls(json, truth);
    addBores(json, truth);
    addPores(json, truth);
    json.add("poreVolume", truth.poreVolume);
    json.add("materialVolume", truth.materialVolume);
    json.add("porosity", truth.porosity);
    json.end();
}

}  // namespace

std::string volumeText(const LyrVolume& volume) {
    const LyrVolume::Size& size = volume.size();
    const LyrVolume::ValueRange& range = volume.valueRange();
    return "volume " + volume.description().source + "\nformat " + volume.description().format + "\nsize " +
           std::to_string(size[0]) + ' ' + std::to_string(size[1]) + ' ' + std::to_string(size[2]) + "\nspacing " +
           spaced(volume.spacing(), volume.unit()) + "\norigin " + spaced(volume.origin(), volume.unit()) +
           "\nvalues " +
           (range.isEmpty() ? "none is finite" : formatNumber(range.low) + " to " + formatNumber(range.high)) + '\n';
}

std::string volumeJson(const LyrVolume& volume, bool isCasting) {
    const LyrVolume::ValueRange& range = volume.valueRange();
    JsonText json;
    json.begin('{');
    json.add("kind", "volume");
    json.add("source", volume.description().source);
    json.add("format", volume.description().format);
    json.addNumbers("size", volume.size());
    json.addNumbers("spacing", volume.spacing());
    json.addNumbers("origin", volume.origin());
    json.add("unit", volume.unit());
    if (range.isEmpty()) {
        json.addToken("valueRange", "null");
    } else {
        json.addNumbers("valueRange", std::array{range.low, range.high});
    }
    if (isCasting) {
        addTruth(json, LyrCasting::truth(volume.size()[0]));
    }
    json.end();
    return json.text();
}

}  // namespace lys::cli
