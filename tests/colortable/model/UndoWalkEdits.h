#pragma once

#include "UndoWalkContent.h"

#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectPtr.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace undowalk {

/** Makes random edits of a few tables. The same seed makes the same edits on every machine. */
class RandomEdits {
public:
    RandomEdits(std::vector<LyrObjectRefPtr>& tables, std::uint64_t seed) : mTables(tables), mEngine(seed) {}

    /** A number from 0 to count - 1. */
    std::size_t pick(std::size_t count) { return static_cast<std::size_t>(mEngine() % count); }
    bool chance(int percent) { return pick(100) < static_cast<std::size_t>(percent); }

    LyrObject* anyTable() { return mTables[pick(mTables.size())].get(); }

    void anyEdit() {
        using Edit = void (RandomEdits::*)();
        static constexpr Edit EDITS[] = {&RandomEdits::replacePositions,  &RandomEdits::overwritePositions,
                                         &RandomEdits::splitSection,      &RandomEdits::splitSection,
                                         &RandomEdits::mergeSections,     &RandomEdits::insertSection,
                                         &RandomEdits::removeSection,     &RandomEdits::shuffleSections,
                                         &RandomEdits::moveSection,       &RandomEdits::moveSection,
                                         &RandomEdits::changeSectionType, &RandomEdits::changePoints,
                                         &RandomEdits::changePoints,      &RandomEdits::toggle,
                                         &RandomEdits::changeExtensions,  &RandomEdits::generate,
                                         &RandomEdits::failToGenerate,    &RandomEdits::copyTable,
                                         &RandomEdits::resetList,         &RandomEdits::changeSideNotes};
        (this->*EDITS[pick(std::size(EDITS))])();
    }

    /** One step of a drag: moves one boundary of a table, keeping the number of boundaries. */
    void dragBoundary(LyrObject* table) {
        auto positions = listOf<float>(table, Lyr::PositionList);
        if (!positions.empty()) {
            const auto index = static_cast<long long>(pick(positions.size()));
            const float value = number();
            LyrValueArrayOPPtr<FloatList>(table, Lyr::PositionList)->setArrayItems(index, index, &value);
        }
    }

private:
    using FloatList = LyrValueArrayPropertyIF<float>;
    using LinkList = LyrValueArrayPropertyIF<LyrObjectLink>;
    using PointList = LyrValueArrayPropertyIF<LyrVector2<float>>;

    float number() {
        static constexpr float SPECIAL[] = {0.0f,
                                            -0.0f,
                                            1e-42f,
                                            std::numeric_limits<float>::infinity(),
                                            std::numeric_limits<float>::quiet_NaN(),
                                            std::numeric_limits<float>::max()};
        return chance(10) ? SPECIAL[pick(std::size(SPECIAL))] : (static_cast<float>(pick(20001)) - 10000.0f) / 64.0f;
    }

    Lyrenum sectionType() {
        const Lyrenum types[] = {Lyr::Constant, Lyr::Gradient,          Lyr::Rainbow,  Lyr::InvertedRainbow,
                                 Lyr::HueCycle, Lyr::BlackGreenBlueRed, Lyr::Continue, Lyr::Custom};
        return types[pick(std::size(types))];
    }

    std::vector<LyrVector2<float>> points() {
        std::vector<LyrVector2<float>> result(pick(4));
        for (LyrVector2<float>& point : result) {
            point = {number(), number()};
        }
        return result;
    }

    static void setPoints(LyrObject* section, Lyrenum channel, const std::vector<LyrVector2<float>>& items) {
        LyrValueArrayOPPtr<PointList>(section, channel)
            ->initArray(0, static_cast<long long>(items.size()) - 1, items.data());
    }

    Lyrenum channel() {
        const Lyrenum channels[] = {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
        return channels[pick(4)];
    }

    LyrObjectRefPtr newSection() {
        LyrObjectRefPtr section("LyrColorLookupTable::Section", Lyr::DocumentScope);
        lyrSetValue(section.get(), Lyr::Type, sectionType());
        setPoints(section.get(), channel(), points());
        return section;
    }

    static LyrValueArrayOPPtr<LinkList> sectionsOf(LyrObject* table) { return {table, Lyr::SectionList}; }
    static long long sizeOf(LyrObject* table) { return sectionsOf(table)->getArraySize(); }

    LyrObject* anySection() {
        LyrObject* table = anyTable();
        const auto sections = listOf<LyrObjectLink>(table, Lyr::SectionList);
        return sections.empty() ? nullptr : sections[pick(sections.size())].getLink();
    }

    void insertAt(LyrObject* table, long long index, LyrObject* section) {
        const LyrObjectLink link(section, nullptr, -1);
        sectionsOf(table)->insertArrayItems(index, index, &link);
    }

    void replacePositions() {
        std::vector<float> positions(pick(8));
        std::generate(positions.begin(), positions.end(), [&] { return number(); });
        LyrValueArrayOPPtr<FloatList>(anyTable(), Lyr::PositionList)
            ->initArray(0, static_cast<long long>(positions.size()) - 1, positions.data());
    }

    void overwritePositions() { dragBoundary(anyTable()); }

    void splitSection() {
        LyrObject* table = anyTable();
        const LyrValueArrayOPPtr<FloatList> positions(table, Lyr::PositionList);
        const auto index = static_cast<long long>(pick(static_cast<std::size_t>(positions->getArraySize()) + 1));
        const float value = number();
        positions->insertArrayItems(index, index, &value);
        const LyrObjectRefPtr section = newSection();
        insertAt(table, std::min(index, sizeOf(table)), section.get());
        if (chance(50)) {
            setPoints(section.get(), channel(), points());
        }
    }

    void mergeSections() {
        LyrObject* table = anyTable();
        const LyrValueArrayOPPtr<FloatList> positions(table, Lyr::PositionList);
        if (positions->getArraySize() > 0 && sizeOf(table) > 0) {
            const auto index = static_cast<long long>(pick(static_cast<std::size_t>(positions->getArraySize())));
            positions->removeArrayItems(index, index);
            const long long section = std::min(index, sizeOf(table) - 1);
            sectionsOf(table)->removeArrayItems(section, section);
        }
    }

    void insertSection() {
        LyrObject* table = anyTable();
        const LyrObjectRefPtr section = newSection();
        insertAt(table, static_cast<long long>(pick(static_cast<std::size_t>(sizeOf(table)) + 1)), section.get());
    }

    void removeSection() {
        LyrObject* table = anyTable();
        const long long count = sizeOf(table);
        if (count > 0) {
            const auto first = static_cast<long long>(pick(static_cast<std::size_t>(count)));
            const auto last = first + static_cast<long long>(pick(static_cast<std::size_t>(count - first)));
            sectionsOf(table)->removeArrayItems(first, last);
        }
    }

    void shuffleSections() {
        LyrObject* table = anyTable();
        auto links = listOf<LyrObjectLink>(table, Lyr::SectionList);
        for (std::size_t i = links.size(); i > 1; --i) {
            std::swap(links[i - 1], links[pick(i)]);
        }
        sectionsOf(table)->initArray(0, static_cast<long long>(links.size()) - 1, links.data());
    }

    /** To another table, leaving the old list first or last. */
    void moveSection() {
        LyrObject* from = anyTable();
        LyrObject* to = anyTable();
        const long long count = sizeOf(from);
        if (count == 0 || from == to) {
            return;
        }
        const auto index = static_cast<long long>(pick(static_cast<std::size_t>(count)));
        const LyrObjectPtr section(
            listOf<LyrObjectLink>(from, Lyr::SectionList)[static_cast<std::size_t>(index)].getLink());
        const auto target = static_cast<long long>(pick(static_cast<std::size_t>(sizeOf(to)) + 1));
        if (chance(50)) {
            sectionsOf(from)->removeArrayItems(index, index);
            insertAt(to, target, section.get());
        } else {
            insertAt(to, target, section.get());
            sectionsOf(from)->removeArrayItems(index, index);
        }
    }

    void changeSectionType() { lyrSetValue(anySection(), Lyr::Type, sectionType()); }

    void changePoints() {
        if (LyrObject* section = anySection()) {
            setPoints(section, channel(), points());
        }
    }

    void toggle() {
        lyrSetValue(anyTable(), chance(50) ? Lyr::AutoLabel : Lyr::AutoScale, Lyrenum(chance(50) ? 1 : 0));
    }

    void changeExtensions() {
        LyrObject* table = anyTable();
        const std::vector<LyrRGBA<float>> colors(pick(3), LyrRGBA<float>(number(), number(), number(), number()));
        const std::vector<Lyrenum> modes(pick(3), sectionType());
        LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrRGBA<float>>>(table, Lyr::ExtensionColorList)
            ->initArray(0, static_cast<long long>(colors.size()) - 1, colors.data());
        LyrValueArrayOPPtr<LyrValueArrayPropertyIF<Lyrenum>>(table, Lyr::ExtensionEnumList)
            ->initArray(0, static_cast<long long>(modes.size()) - 1, modes.data());
    }

    void generate() {
        LyrObject* table = anyTable();
        const auto from = static_cast<float>(pick(100)) / 100.0f;
        const float to = from + 0.1f + static_cast<float>(pick(100)) / 200.0f;
        const float step = 0.05f + static_cast<float>(pick(100)) / 300.0f;
        switch (pick(3)) {
            case 0:
                LyrColorLookupTable::createSmooth(table, from, to, sectionType());
                break;
            case 1:
                LyrColorLookupTable::createStepped(table, from, to, step, sectionType());
                break;
            default:
                LyrColorLookupTable::createSphereSegmentStepped(table, from, to, step, sectionType());
        }
    }

    void failToGenerate() {
        LyrObject* table = anyTable();
        switch (pick(3)) {
            case 0:
                LyrColorLookupTable::createSmooth(table, number(), -std::numeric_limits<float>::infinity(),
                                                  sectionType());
                break;
            case 1:
                LyrColorLookupTable::createStepped(table, 0.0f, 1.0f, chance(50) ? 0.0f : 1e-30f, sectionType());
                break;
            default:
                LyrColorLookupTable::createSphereSegmentStepped(table, 2.0f, 3.0f, 0.1f, sectionType());
        }
    }

    void copyTable() { anyTable()->copyFrom(*anyTable()); }

    void resetList() {
        const Lyrenum lists[] = {Lyr::PositionList, Lyr::SectionList, Lyr::ExtensionColorList, Lyr::AutoScale};
        anyTable()->getProperty(lists[pick(std::size(lists))])->resetData();
    }

    void changeSideNotes() {
        LyrObject* table = anyTable();
        lyrSetValue(table, Lyr::FiniteMode,
                    LyrValuePair<Lyrenum>{Lyrenum(chance(50) ? 1 : 0), Lyrenum(chance(50) ? 1 : 0)});
        lyrSetValue(table, Lyr::MaximumRange, LyrValuePair<float>{number(), number()});
        lyrSetValue(table, Lyr::Quantity, chance(50) ? Lyr::Length : Lyr::Angle);
    }

    std::vector<LyrObjectRefPtr>& mTables;
    std::mt19937_64 mEngine;
};

}  // namespace undowalk
