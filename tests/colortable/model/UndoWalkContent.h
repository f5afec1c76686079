#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <bit>
#include <cstdint>
#include <map>
#include <vector>

namespace undowalk {

/** Gives every section a number of its own, so that a section that was destroyed and another one made in its place are
 * told apart from the same section brought back. */
class SectionNumbers : public LyrMetaClass::FactoryHook {
public:
    SectionNumbers() { LyrMetaClass::addFactoryHook("LyrColorLookupTable::Section", this); }
    ~SectionNumbers() override { LyrMetaClass::removeFactoryHook("LyrColorLookupTable::Section", this); }
    void objectCreated(LyrClass* object) override { mNumbers[object] = ++mLast; }
    void objectDestroyed(LyrClass* object) override { mNumbers.erase(object); }

    long long of(const LyrClass* object) const {
        const auto found = mNumbers.find(object);
        return found != mNumbers.end() ? found->second : -1;
    }

private:
    std::map<const LyrClass*, long long> mNumbers;
    long long mLast = 0;
};

using Bits = std::vector<std::uint32_t>;

/** The content of one section. */
struct SectionContent {
    long long number = -1;
    int type = -1;
    Bits points[4];
    bool operator==(const SectionContent&) const = default;
};

/** The content of one table: what its flags make content. */
struct TableContent {
    Bits positions;
    Bits extensionColors;
    std::vector<Lyrenum> extensionModes;
    int autoLabel = -1;
    int autoScale = -1;
    std::vector<SectionContent> sections;
    bool operator==(const TableContent&) const = default;
};

/** What is stored beside the content and never taken back. */
struct SideNotes {
    int below = -1;
    int above = -1;
    int quantity = -1;
    int creationType = -1;
    Bits numbers;
    bool operator==(const SideNotes&) const = default;
};

inline void append(Bits& bits, float value) {
    bits.push_back(std::bit_cast<std::uint32_t>(value));
}

template <class T>
std::vector<T> listOf(const LyrObject* object, Lyrenum id) {
    LyrValueArrayOPCache<T> cache;
    cache.load(object, id);
    return cache.items();
}

inline SectionContent contentOfSection(const LyrObject* section, const SectionNumbers& numbers) {
    SectionContent content;
    content.number = numbers.of(section);
    content.type = lyrGetValue(section, Lyr::Type, Lyrenum(-1));
    const Lyrenum lists[] = {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
    for (int channel = 0; channel < 4; ++channel) {
        for (const LyrVector2<float>& point : listOf<LyrVector2<float>>(section, lists[channel])) {
            append(content.points[channel], point.x);
            append(content.points[channel], point.y);
        }
    }
    return content;
}

inline TableContent contentOfTable(const LyrObject* table, const SectionNumbers& numbers) {
    TableContent content;
    for (const float position : listOf<float>(table, Lyr::PositionList)) {
        append(content.positions, position);
    }
    for (const LyrRGBA<float>& color : listOf<LyrRGBA<float>>(table, Lyr::ExtensionColorList)) {
        for (const float channel : {color.red, color.green, color.blue, color.alpha}) {
            append(content.extensionColors, channel);
        }
    }
    content.extensionModes = listOf<Lyrenum>(table, Lyr::ExtensionEnumList);
    content.autoLabel = lyrGetValue(table, Lyr::AutoLabel, Lyrenum(-1));
    content.autoScale = lyrGetValue(table, Lyr::AutoScale, Lyrenum(-1));
    for (const LyrObjectLink& link : listOf<LyrObjectLink>(table, Lyr::SectionList)) {
        content.sections.push_back(contentOfSection(link.getLink(), numbers));
    }
    return content;
}

inline SideNotes sideNotesOf(const LyrObject* table) {
    SideNotes notes;
    const auto mode = lyrGetValue(table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{});
    notes.below = mode.first;
    notes.above = mode.second;
    notes.quantity = lyrGetValue(table, Lyr::Quantity, Lyrenum(-1));
    notes.creationType = lyrGetValue(table, Lyr::CreationType, Lyrenum(-1));
    const auto parameters = lyrGetValue(table, Lyr::CreationParameters, LyrVector3<float>{});
    const auto range = lyrGetValue(table, Lyr::MaximumRange, LyrValuePair<float>{});
    for (const float number : {parameters.x, parameters.y, parameters.z, range.first, range.second}) {
        append(notes.numbers, number);
    }
    return notes;
}

}  // namespace undowalk
