#include "TableDescription.h"

#include "JsonText.h"
#include "Numbers.h"

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <algorithm>
#include <limits>

namespace lys::cli {

namespace {

using Points = std::vector<LyrVector2<float>>;

std::string nameOf(Lyrenum id) {
    const std::string name = id.getName();
    return name.empty() ? std::to_string(int(id)) : name;
}

template <class T>
std::vector<T> listOf(const LyrObject* object, Lyrenum id) {
    LyrValueArrayOPCache<T> cache;
    cache.load(object, id);
    return cache.items();
}

TableDescription::Section describeSection(const LyrObject* section, float from, float to) {
    if (!section || !section->getMetaClass().isOfType(LyrColorLookupTable::Section::metaClass())) {
        return {"(no section)", from, to, {}};
    }
    return {
        nameOf(lyrGetValue(section, Lyr::Type, Lyrenum(-1))),
        from,
        to,
        {listOf<LyrVector2<float>>(section, Lyr::PointListRed), listOf<LyrVector2<float>>(section, Lyr::PointListGreen),
         listOf<LyrVector2<float>>(section, Lyr::PointListBlue),
         listOf<LyrVector2<float>>(section, Lyr::PointListAlpha)}};
}

std::string listText(const std::vector<float>& values) {
    std::string text;
    for (const float value : values) {
        text += ' ' + formatNumber(value);
    }
    return text;
}

/** "red 0.6" for one point, "red 0 to 1" for more: only the first and the last one count. */
std::string channelText(const char* name, const Points& points) {
    std::string text = std::string("  ") + name + ' ' + formatNumber(points.front().y);
    return points.size() == 1 ? text : text + " to " + formatNumber(points.back().y);
}

std::string pointsJson(const Points& points) {
    std::string text;
    for (const LyrVector2<float>& point : points) {
        text += (text.empty() ? "[" : ", [") + JsonText::number(point.x) + ", " + JsonText::number(point.y) + "]";
    }
    return "[" + text + "]";
}

}  // namespace

TableDescription::TableDescription(const LyrColorLookupTable& table)
    : positions(listOf<float>(&table, Lyr::PositionList)),
      quantity(nameOf(lyrGetValue(&table, Lyr::Quantity, Lyrenum(-1)))),
      creationType(nameOf(lyrGetValue(&table, Lyr::CreationType, Lyrenum(-1)))),
      autoLabel(lyrGetValue(&table, Lyr::AutoLabel, Lyrenum(0)) == 1),
      autoScale(lyrGetValue(&table, Lyr::AutoScale, Lyrenum(0)) == 1) {
    const auto mode = lyrGetValue(&table, Lyr::FiniteMode, LyrValuePair<Lyrenum>(0, 0));
    finiteMode = {int(mode.first), int(mode.second)};
    const auto parameters = lyrGetValue(&table, Lyr::CreationParameters, LyrVector3<float>());
    creationParameters = {parameters.x, parameters.y, parameters.z};
    const auto range = lyrGetValue(&table, Lyr::MaximumRange, LyrValuePair<float>());
    maximumRange = {range.first, range.second};

    constexpr float infinity = std::numeric_limits<float>::infinity();
    const std::vector<LyrObjectLink> links = listOf<LyrObjectLink>(&table, Lyr::SectionList);
    // Of an invalid table, with too few or too many sections, the ends are as good as they can be.
    for (std::size_t i = 0; i < links.size(); ++i) {
        const float from = i == 0 || positions.empty() ? -infinity : positions[std::min(i, positions.size()) - 1];
        const float to = i < positions.size() ? positions[i] : infinity;
        sections.push_back(describeSection(links[i].getLink(), from, to));
    }
}

std::string TableDescription::reasonInvalid() const {
    if (positions.size() < 2) {
        return "it needs at least two positions and has " + std::to_string(positions.size());
    }
    if (sections.size() != positions.size() + 1) {
        return "it needs one section more than positions and has " + std::to_string(sections.size()) + " for " +
               std::to_string(positions.size());
    }
    return {};
}

bool TableDescription::isAscending() const {
    return std::is_sorted(positions.begin(), positions.end());
}

std::string TableDescription::toText(const std::string& name) const {
    const std::string reason = reasonInvalid();
    std::string text = "table " + name + '\n';
    text += reason.empty() ? "valid\n" : "invalid: " + reason + '\n';
    text += isAscending() ? "" : "the positions do not ascend: colours are not what one might expect\n";
    text += "positions (" + std::to_string(positions.size()) + "):" + listText(positions) + '\n';
    text += "sections (" + std::to_string(sections.size()) + "):\n";
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const Section& section = sections[i];
        text += "  " + std::to_string(i) + "  " + formatNumber(section.from) + " to " + formatNumber(section.to) +
                "  " + section.type;
        for (std::size_t channel = 0; channel < CHANNELS.size(); ++channel) {
            text += section.points[channel].empty() ? "" : channelText(CHANNELS[channel], section.points[channel]);
        }
        text += '\n';
    }
    text += std::string("black below: ") + (finiteMode[0] == 1 ? "yes" : "no") +
            ", black above: " + (finiteMode[1] == 1 ? "yes" : "no") + '\n';
    return text + "quantity " + quantity + '\n';
}

std::string TableDescription::toJson(const std::string& name) const {
    JsonText json;
    addTo(json, "", name);
    return json.text();
}

void TableDescription::addTo(JsonText& json, const char* key, const std::string& name) const {
    const std::string reason = reasonInvalid();
    json.begin('{', key);
    json.add("kind", "table");
    json.add("source", name);
    json.add("valid", reason.empty());
    if (!reason.empty()) {
        json.add("reason", "invalid: " + reason);
    }
    json.add("ascending", isAscending());
    json.addNumbers("positions", positions);
    json.begin('[', "sections");
    for (const Section& section : sections) {
        json.begin('{');
        json.add("type", section.type);
        json.add("from", section.from);
        json.add("to", section.to);
        for (std::size_t channel = 0; channel < CHANNELS.size(); ++channel) {
            json.addToken(CHANNELS[channel], pointsJson(section.points[channel]));
        }
        json.end();
    }
    json.end();
    json.addNumbers("finiteMode", finiteMode);
    json.add("quantity", quantity);
    json.add("autoLabel", autoLabel);
    json.add("autoScale", autoScale);
    json.add("creationType", creationType);
    json.addNumbers("creationParameters", creationParameters);
    json.addNumbers("maximumRange", maximumRange);
    json.end();
}

}  // namespace lys::cli
