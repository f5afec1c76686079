#include <analysis/ToleranceTable.h>
#include <analysis/compute/LyrDefectResult.h>
#include <analysis/compute/LyrVerdict.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <array>
#include <cmath>

namespace {

/** M. Okabe, K. Ito, "Color Universal Design", 2008: told apart with every colour vision. */
struct Meaning {
    std::array<long, 4> color;
    LyrVerdict verdict;
};
constexpr std::array<Meaning, 3> MEANINGS = {{{{0, 158, 115, 255}, LyrVerdict::Pass},
                                              {{230, 159, 0, 255}, LyrVerdict::Warn},
                                              {{213, 94, 0, 255}, LyrVerdict::Fail}}};

LyrVerdict verdictOf(const LyrRGBA<float>& color) {
    const std::array<float, 4> channels = {color.red, color.green, color.blue, color.alpha};
    for (const Meaning& each : MEANINGS) {
        bool same = true;
        for (std::size_t i = 0; i < 4; ++i) {
            same = same && std::abs(channels[i] * 255.0f - static_cast<float>(each.color[i])) < 0.5f;
        }
        if (same) {
            return each.verdict;
        }
    }
    return LyrVerdict::None;
}

bool judges(const LyrObject* object) {
    const auto* section = dynamic_cast<const LyrColorLookupTable::Section*>(object);
    if (!section) {
        return false;
    }
    const auto type = lyrGetValue<Lyrenum>(section, Lyr::Type, -1);
    LyrRGBA<float> low{}, high{};
    return (type == Lyrenum(Lyr::Constant) || type == Lyrenum(Lyr::Gradient)) &&
           section->getColor({0.0f, 1.0f}, 0.0f, low, nullptr, nullptr) &&
           section->getColor({0.0f, 1.0f}, 1.0f, high, nullptr, nullptr) && verdictOf(low) != LyrVerdict::None &&
           verdictOf(low) == verdictOf(high);
}

}  // namespace

LyrRGBA<float> lysColorOf(LyrVerdict verdict) {
    for (const Meaning& each : MEANINGS) {
        if (each.verdict == verdict) {
            const auto channel = [&](std::size_t i) { return static_cast<float>(each.color[i]) / 255.0f; };
            return {channel(0), channel(1), channel(2), channel(3)};
        }
    }
    return {};
}

bool lysIsTolerance(const LyrColorLookupTable& table) {
    LyrValueArrayOPCache<LyrObjectLink> sections;
    if (!sections.load(&table, Lyr::SectionList) || sections.items().empty()) {
        return false;
    }
    for (const LyrObjectLink& each : sections.items()) {
        if (!judges(each.getLink())) {
            return false;
        }
    }
    LyrRGBA<float> color{};
    return table.getColor(0.0f, color);
}

std::vector<LyrVerdict> lysVerdicts(const LyrColorLookupTable* table, std::span<const LyrDefect> defects) {
    if (!table || !lysIsTolerance(*table)) {
        return {};
    }
    std::vector<float> values;
    values.reserve(defects.size());
    for (const LyrDefect& defect : defects) {
        values.push_back(static_cast<float>(defect.volume));
    }
    std::vector<LyrRGBA<float>> colors(values.size());
    if (!table->getColors(static_cast<long long>(values.size()), values.data(), colors.data())) {
        return {};
    }
    std::vector<LyrVerdict> verdicts;
    verdicts.reserve(colors.size());
    for (const LyrRGBA<float>& color : colors) {
        verdicts.push_back(verdictOf(color));
    }
    return verdicts;
}
