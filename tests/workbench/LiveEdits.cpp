#include "workbench/LiveEdits.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrVector2.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

constexpr std::size_t MOST_SECTIONS = 20;
/** About the casting's greatest value. */
constexpr float LARGEST = 60000.0f;

LyrObject* content(std::size_t index) {
    return LyqSession::instance().activeLayer()->contents().at(index).object;
}

Lyrenum name(const char* text) {
    return Lyrenum(text, true);
}

}  // namespace

LiveEdits::LiveEdits() : mTable(content(0)), mSettings(content(1)) {}

void LiveEdits::edit(std::mt19937& random) {
    ++mCount;
    switch (random() % 7) {
        case 0:
            return moveBoundary(random);
        case 1:
            return changeType(random);
        case 2:
            return splitOrMerge(random);
        case 3:
            return changeLegend(random);
        default:
            return recolor(random);
    }
}

/** A number from 0 to 1 that the last 9972 edits did not use. */
float LiveEdits::fresh() const {
    return static_cast<float>(mCount * 7 % 9973) / 9973.0f;
}

LyrValueArrayOPCache<LyrObjectLink> LiveEdits::sections() const {
    LyrValueArrayOPCache<LyrObjectLink> list;
    EXPECT_TRUE(list.load(mTable.get(), name("SectionList")));
    return list;
}

LyrValueArrayOPCache<float> LiveEdits::positions() const {
    LyrValueArrayOPCache<float> list;
    EXPECT_TRUE(list.load(mTable.get(), name("PositionList")));
    return list;
}

LyrObject* LiveEdits::anySection(std::mt19937& random) const {
    const LyrValueArrayOPCache<LyrObjectLink> list = sections();
    return list.items()[random() % list.items().size()].getLink();
}

void LiveEdits::recolor(std::mt19937& random) const {
    constexpr std::array<const char*, 3> CHANNELS = {"PointListRed", "PointListGreen", "PointListBlue"};
    LyrObject* section = anySection(random);
    const Lyrenum channel = name(CHANNELS[random() % CHANNELS.size()]);
    LyrValueArrayOPCache<LyrVector2<float>> points;
    EXPECT_TRUE(points.load(section, channel));
    points.items().resize(2);
    points.items()[random() % 2].y = fresh();
    EXPECT_TRUE(points.store(section, channel));
}

void LiveEdits::moveBoundary(std::mt19937& random) const {
    LyrValueArrayOPCache<float> list = positions();
    list.items()[random() % list.items().size()] = LARGEST * fresh();
    std::sort(list.items().begin(), list.items().end());
    EXPECT_TRUE(list.store(mTable.get(), name("PositionList")));
}

void LiveEdits::changeType(std::mt19937& random) const {
    constexpr std::array<const char*, 4> TYPES = {"Constant", "Gradient", "Rainbow", "HueCycle"};
    LyrObject* section = anySection(random);
    const Lyrenum wanted = name(TYPES[random() % TYPES.size()]);
    if (lyrGetValue(section, Lyr::Type, Lyrenum(-1)) == wanted) {
        return recolor(random);
    }
    EXPECT_TRUE(lyrSetValue<Lyrenum>(section, Lyr::Type, wanted));
}

void LiveEdits::splitOrMerge(std::mt19937& random) const {
    LyrValueArrayOPCache<LyrObjectLink> list = sections();
    LyrValueArrayOPCache<float> bounds = positions();
    const std::size_t place = 1 + random() % (list.items().size() - 2);
    const auto at = static_cast<std::ptrdiff_t>(place);
    LyrObjectPtr made;
    if (list.items().size() < MOST_SECTIONS && random() % 2 == 0) {
        const LyrObject& split = *list.items()[place].getLink();
        made = LyrObjectPtr(static_cast<LyrObject*>(split.getMetaClass().create()));
        EXPECT_TRUE(made->copyFrom(split));
        const float middle = (bounds.items()[place - 1] + bounds.items()[place]) / 2.0f;
        list.items().insert(list.items().begin() + at, LyrObjectLink(made.get(), nullptr, -1));
        bounds.items().insert(bounds.items().begin() + at, middle);
    } else if (list.items().size() > 3) {
        list.items().erase(list.items().begin() + at);
        bounds.items().erase(bounds.items().begin() + at - 1);
    } else {
        return recolor(random);
    }
    EXPECT_TRUE(bounds.store(mTable.get(), name("PositionList")));
    EXPECT_TRUE(list.store(mTable.get(), name("SectionList")));
}

void LiveEdits::changeLegend(std::mt19937& random) const {
    const std::array<Lyrenum, 4> sides = {Lyr::Left, Lyr::Right, Lyr::Top, Lyr::Bottom};
    const Lyrenum side = sides[random() % sides.size()];
    const std::string caption = "Value " + std::to_string(mCount);
    switch (random() % 3) {
        case 0:
            if (lyrGetValue(mSettings.get(), Lyr::Position, Lyrenum(-1)) == side) {
                return recolor(random);
            }
            EXPECT_TRUE(lyrSetValue<Lyrenum>(mSettings.get(), Lyr::Position, side));
            break;
        case 1:
            EXPECT_TRUE(lyrSetValue(mSettings.get(), Lyr::Size, 0.4f + fresh() / 2.0f));
            break;
        default:
            EXPECT_TRUE(lyrSetValue<const char*>(mSettings.get(), name("DescriptionTemplate"), caption.c_str()));
    }
}
