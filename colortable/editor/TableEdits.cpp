#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/TableEdits_p.h>
#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrVector2.h>
#include <lyr_core/LyrWholeWrite.h>

#include <array>
#include <initializer_list>
#include <limits>

namespace lys::editor {

namespace {

using Section = LyrColorLookupTable::Section;
using Point = LyrVector2<float>;
using PointList = LyrValueArrayPropertyIF<Point>;

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

/** Does what writes some properties of an object, or leaves all of them as they were. */
template <class Work>
bool writeWhole(LyrObject& object, std::initializer_list<Lyrenum> properties, Work work) {
    try {
        LyrWholeWrite whole;
        for (const Lyrenum id : properties) {
            if (!whole.add(object.getProperty(id))) {
                return false;
            }
        }
        if (!work()) {
            return false;
        }
        whole.keep();
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(&object, Lyr::AllocationFailed));
        return false;
    }
}

/** What a section of a type starts with: a constant is blue, a gradient runs from blue to red, a scheme is opaque. */
bool writeStartingPoints(LyrObject& section, Lyrenum type) {
    // Both points of a gradient's list stand at 0: colouring asks for their order only.
    struct Ends {
        float first;
        float last;
    };
    const bool isGradient = type == Lyr::Gradient;
    const float blue = isGradient || type == Lyr::Constant ? 1.0f : 0.0f;
    const Ends channels[] = {{0, 1}, {0, 0}, {blue, 0}, {1, 1}};
    for (std::size_t i = 0; i < std::size(channels); ++i) {
        const Point points[] = {{0, channels[i].first}, {0, channels[i].last}};
        const LyrValueArrayOPPtr<PointList> list(&section, channelIds()[i]);
        if (!list || !list->initArray(0, isGradient ? 1 : 0, points)) {
            return false;
        }
    }
    return true;
}

/** Writes boundaries, then sections: in between the table is inconsistent. */
bool storeContent(LyrObject& table, const TableContent& content) {
    return writeWhole(table, {Lyr::PositionList, Lyr::SectionList}, [&] {
        return writeList(table, Lyr::PositionList, content.positions) &&
               writeList(table, Lyr::SectionList, content.sections);
    });
}

/** Colours one channel of a control point; `missing` fills the list up to it. */
bool setPoint(LyrObject& section, Lyrenum channel, long long index, float value, float missing) {
    LyrValueArrayOPCache<Point> points;
    if (!points.load(&section, channel)) {
        return false;
    }
    for (auto k = static_cast<long long>(points.items().size()); k <= index; ++k) {
        points.items().emplace_back(static_cast<float>(k), missing);
    }
    points.items()[static_cast<std::size_t>(index)].y = value;
    return points.store(&section, channel);
}

/** The value of a control point in one channel, `missing` if there is none. */
float pointOf(const LyrObject& section, Lyrenum channel, long long index, float missing) {
    const LyrValueArrayOPPtr<PointList> list(&section, channel);
    Point point;
    return list && index < list->getArraySize() && list->getArrayItems(index, index, &point) ? point.y : missing;
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
    if (type == Lyr::Continue) {
        return lyrSetValue(&section, Lyr::Type, type);
    }
    return writeWhole(section,
                      {Lyr::Type, Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha},
                      [&] { return lyrSetValue(&section, Lyr::Type, type) && writeStartingPoints(section, type); });
}

bool mergeSections(LyrObject& table, const SectionRange& range) {
    TableContent content = TableContent::of(&table);
    if (!content.isConsistent() || range.getSize() < 2 || range.low < 1 || range.high > content.sectionCount() - 2) {
        return false;
    }
    // Those that go are held by the list until it is written.
    content.sections.erase(content.sections.begin() + range.low + 1, content.sections.begin() + range.high + 1);
    content.positions.erase(content.positions.begin() + range.low, content.positions.begin() + range.high);
    return storeContent(table, content);
}

bool splitSection(LyrObject& table, long long index) {
    TableContent content = TableContent::of(&table);
    const LyrObject* section = content.sectionAt(index);
    if (!content.isConsistent() || !section || index < 1 || index > content.sectionCount() - 2) {
        return false;
    }
    const LyrObjectRefPtr half = copyOf(*section);
    if (!half) {
        return false;
    }
    const auto at = static_cast<std::size_t>(index);
    // In double: the sum of two large floats would be infinite.
    const double middle = (double(content.positions[at - 1]) + double(content.positions[at])) * 0.5;
    try {
        content.sections.insert(content.sections.begin() + index, LyrObjectLink(half.get(), nullptr, -1));
        content.positions.insert(content.positions.begin() + index, static_cast<float>(middle));
    } catch (...) {
        LyrError::emitError(LyrError::Message(&table, Lyr::AllocationFailed));
        return false;
    }
    return storeContent(table, content);
}

LyrRGBA<float> colorPointOf(const LyrObject& section, long long index) {
    const auto ids = channelIds();
    return {pointOf(section, ids[0], index, 0.0f), pointOf(section, ids[1], index, 0.0f),
            pointOf(section, ids[2], index, 0.0f), pointOf(section, ids[3], index, 1.0f)};
}

bool setColorPoint(LyrObject& section, long long index, const LyrRGBA<float>& color) {
    return index >= 0 &&
           writeWhole(section, {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha}, [&] {
               return setPoint(section, Lyr::PointListRed, index, color.red, 0.0f) &&
                      setPoint(section, Lyr::PointListGreen, index, color.green, 0.0f) &&
                      setPoint(section, Lyr::PointListBlue, index, color.blue, 0.0f) &&
                      setPoint(section, Lyr::PointListAlpha, index, color.alpha, 1.0f);
           });
}

float opacityOf(const LyrObject& section) {
    return pointOf(section, Lyr::PointListAlpha, 0, 1.0f);
}

bool setOpacity(LyrObject& section, float opacity) {
    const LyrValueArrayOPPtr<PointList> list(&section, Lyr::PointListAlpha);
    Point point(0.0f, opacity);
    if (!list || list->getArraySize() == 0) {
        return list && list->initArray(0, 0, &point);
    }
    const bool isRead = list->getArrayItems(0, 0, &point);
    point.y = opacity;
    return isRead && list->setArrayItems(0, 0, &point);
}

}  // namespace lys::editor
