#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/TableEdits_p.h>
#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <limits>

namespace lys::editor {

namespace {

using Section = LyrColorLookupTable::Section;
using Points = ControlPoints::List;

constexpr float LARGEST = std::numeric_limits<float>::max();

template <class T>
std::vector<T> readList(const LyrObject* object, Lyrenum id) {
    LyrValueArrayOPCache<T> cache;
    cache.load(object, id);
    return std::move(cache.items());
}

template <class T>
bool writeList(LyrObject& object, Lyrenum id, const std::vector<T>& items) {
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<T>> property(&object, id);
    return property && property->initArray(0, static_cast<long long>(items.size()) - 1, items.data());
}

std::array<Lyrenum, 4> channelIds() {
    return {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
}

/** What a section of a type starts with: a constant is blue, a gradient runs from blue to red, a scheme is opaque. */
ControlPoints startingPoints(Lyrenum type) {
    if (type == Lyr::Constant) {
        return {{Points{{0, 0}}, Points{{0, 0}}, Points{{0, 1}}, Points{{0, 1}}}};
    }
    if (type == Lyr::Gradient) {
        // Both points of a list stand at 0: colouring asks for their order only.
        return {{Points{{0, 0}, {0, 1}}, Points{{0, 0}, {0, 0}}, Points{{0, 1}, {0, 0}}, Points{{0, 1}, {0, 1}}}};
    }
    return {{Points{{0, 0}}, Points{{0, 0}}, Points{{0, 0}}, Points{{0, 1}}}};
}

/** Writes boundaries, then sections: in between the table is inconsistent. */
bool storeContent(LyrObject& table, const TableContent& content) {
    return writeList(table, Lyr::PositionList, content.positions) &&
           writeList(table, Lyr::SectionList, content.sections);
}

/** A new section with the type and the points of another; null when it could not be made. */
LyrObjectRefPtr copyOf(const LyrObject& section) {
    LyrObjectRefPtr copy("LyrColorLookupTable::Section", Lyr::DocumentScope);
    if (!copy) {
        return copy;
    }
    // Not yet part of the document: nothing of it is recorded for undo.
    const LyrLocalClassFlags filling(copy.get(), LyrFlags::DOCUMENT, 0);
    for (const Lyrenum id :
         {Lyrenum(Lyr::Type), Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha}) {
        LyrProperty* target = copy->getProperty(id);
        const LyrProperty* source = section.getProperty(id);
        if (!target || !source || !target->copyValueFrom(*source)) {
            return {};
        }
    }
    return copy;
}

}  // namespace

TableContent TableContent::of(const LyrObject* table) {
    return {readList<float>(table, Lyr::PositionList), readList<LyrObjectLink>(table, Lyr::SectionList)};
}

Section* TableContent::sectionAt(long long index) const {
    LyrObject* object =
        index >= 0 && index < sectionCount() ? sections[static_cast<std::size_t>(index)].getLink() : nullptr;
    return object && object->getMetaClass().isOfType(Section::metaClass()) ? static_cast<Section*>(object) : nullptr;
}

LyrValuePair<float> maximumRangeOf(const LyrObject* table) {
    return lyrGetValue(table, Lyr::MaximumRange, LyrValuePair<float>{-LARGEST, LARGEST});
}

void movePosition(std::vector<float>& positions, long long index, float value, const LyrValuePair<float>& range) {
    const auto count = static_cast<long long>(positions.size());
    if (index < 0 || index >= count) {
        return;
    }
    const auto raise = [&value](float bound) { value = value < bound ? bound : value; };
    const auto lower = [&value](float bound) { value = value > bound ? bound : value; };
    raise(range.first);
    lower(range.second);
    const auto at = static_cast<std::size_t>(index);
    if (index > 0) {
        raise(positions[at - 1]);
    }
    if (index + 1 < count) {
        lower(positions[at + 1]);
    }
    positions[at] = value;
    for (std::size_t i = 1; i < positions.size(); ++i) {
        positions[i] = positions[i] < positions[i - 1] ? positions[i - 1] : positions[i];
    }
}

bool changeType(LyrObject& section, Lyrenum type) {
    if (lyrGetValue(&section, Lyr::Type, Lyrenum(-1)) == type) {
        return true;
    }
    return lyrSetValue(&section, Lyr::Type, type) && (type == Lyr::Continue || startingPoints(type).store(section));
}

bool mergeSections(LyrObject& table, const SectionRange& range) {
    const TableContent before = TableContent::of(&table);
    if (!before.isConsistent() || range.getSize() < 2 || range.low < 1 || range.high > before.sectionCount() - 2) {
        return false;
    }
    TableContent merged = before;
    merged.sections.erase(merged.sections.begin() + range.low + 1, merged.sections.begin() + range.high + 1);
    merged.positions.erase(merged.positions.begin() + range.low, merged.positions.begin() + range.high);
    return storeContent(table, merged);
}

bool splitSection(LyrObject& table, long long index) {
    const TableContent before = TableContent::of(&table);
    const LyrObject* section = before.sectionAt(index);
    if (!before.isConsistent() || !section || index < 1 || index > before.sectionCount() - 2) {
        return false;
    }
    const LyrObjectRefPtr half = copyOf(*section);
    if (!half) {
        return false;
    }
    TableContent split = before;
    const auto at = static_cast<std::size_t>(index);
    // In double: the sum of two large floats would be infinite.
    const double middle = (double(before.positions[at - 1]) + double(before.positions[at])) * 0.5;
    split.sections.insert(split.sections.begin() + index, LyrObjectLink(half.get(), nullptr, -1));
    split.positions.insert(split.positions.begin() + index, static_cast<float>(middle));
    return storeContent(table, split);
}

ControlPoints ControlPoints::of(const LyrObject& section) {
    ControlPoints points;
    for (std::size_t i = 0; i < points.channels.size(); ++i) {
        points.channels[i] = readList<LyrVector2<float>>(&section, channelIds()[i]);
    }
    return points;
}

bool ControlPoints::store(LyrObject& section) const {
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (!writeList(section, channelIds()[i], channels[i])) {
            return false;
        }
    }
    return true;
}

void ControlPoints::extendTo(std::size_t count) {
    for (std::size_t i = 0; i < channels.size(); ++i) {
        for (std::size_t k = channels[i].size(); k < count; ++k) {
            channels[i].emplace_back(static_cast<float>(k), i == 3 ? 1.0f : 0.0f);
        }
    }
}

LyrRGBA<float> ControlPoints::colorAt(std::size_t index) const {
    return {channels[0][index].y, channels[1][index].y, channels[2][index].y, channels[3][index].y};
}

void ControlPoints::setColorAt(std::size_t index, const LyrRGBA<float>& color) {
    channels[0][index].y = color.red;
    channels[1][index].y = color.green;
    channels[2][index].y = color.blue;
    channels[3][index].y = color.alpha;
}

float opacityOf(const LyrObject& section) {
    const Points points = readList<LyrVector2<float>>(&section, Lyr::PointListAlpha);
    return points.empty() ? 1.0f : points.front().y;
}

bool setOpacity(LyrObject& section, float opacity) {
    Points points = readList<LyrVector2<float>>(&section, Lyr::PointListAlpha);
    if (points.empty()) {
        points.emplace_back(0.0f, opacity);
    }
    points.front().y = opacity;
    return writeList(section, Lyr::PointListAlpha, points);
}

}  // namespace lys::editor
