#pragma once

#include "colortable/model/ModelTools.h"
#include "colortable/model/PlainTable.h"

#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

/** Random tables, each beside a plain description of it. */
namespace edits {

using model::Point;

/** A section in plain words. */
struct PlainSection {
    int type = 0;
    std::vector<Point> points[4];
};

struct PlainContent {
    std::vector<float> positions;
    std::vector<PlainSection> sections;
};

inline const Lyrenum* channelIds() {
    static const Lyrenum ids[] = {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
    return ids;
}

inline PlainSection randomSection() {
    const Lyrenum types[] = {Lyr::Constant, Lyr::Constant, Lyr::Gradient,          Lyr::Rainbow, Lyr::InvertedRainbow,
                             Lyr::HueCycle, Lyr::Continue, Lyr::BlackGreenBlueRed, Lyr::Custom};
    PlainSection section;
    section.type = types[*rc::gen::inRange<std::size_t>(0, std::size(types))];
    for (auto& points : section.points) {
        points.resize(*rc::gen::inRange<std::size_t>(0, 4));
        for (Point& point : points) {
            point = {float(*rc::gen::inRange(0, 4)), float(*rc::gen::inRange(-8, 73)) / 64.0f};
        }
    }
    return section;
}

/** A boundary: an ordinary number, one of few so that some are equal, or one near the end of all floats. */
inline float randomPosition() {
    const int kind = *rc::gen::inRange(0, 10);
    if (kind == 0) {
        return std::numeric_limits<float>::max() / float(*rc::gen::inRange(1, 4)) *
               (*rc::gen::arbitrary<bool>() ? 1.0f : -1.0f);
    }
    if (kind == 1) {
        return float(*rc::gen::inRange(-3, 4)) * std::numeric_limits<float>::denorm_min();
    }
    return kind < 5 ? float(*rc::gen::inRange(-3, 4)) : float(*rc::gen::inRange(-100000, 100000)) / 64.0f;
}

inline PlainContent randomContent() {
    PlainContent content;
    content.positions.resize(*rc::gen::inRange<std::size_t>(2, 9));
    std::generate(content.positions.begin(), content.positions.end(), randomPosition);
    std::sort(content.positions.begin(), content.positions.end());
    for (std::size_t i = 0; i <= content.positions.size(); ++i) {
        content.sections.push_back(randomSection());
    }
    return content;
}

/** A table that holds what is described. */
inline model::Held<model::Table> tableOf(const PlainContent& content) {
    auto table = model::newTable();
    std::vector<LyrObject*> sections;
    for (const PlainSection& plain : content.sections) {
        auto* section = new model::Section;
        RC_ASSERT(model::setType(*section, plain.type));
        for (int i = 0; i < 4; ++i) {
            RC_ASSERT(model::setList(*section, channelIds()[i], plain.points[i]));
        }
        sections.push_back(section);
    }
    RC_ASSERT(model::setList(*table, Lyr::PositionList, content.positions));
    RC_ASSERT(model::setSections(*table, sections));
    return table;
}

inline bool isLike(const LyrObject& section, const PlainSection& plain) {
    bool same = int(lyrGetValue(&section, Lyr::Type, Lyrenum(-1))) == plain.type;
    for (int i = 0; i < 4; ++i) {
        const auto points = model::listOf<Point>(section, channelIds()[i]);
        same = same && std::equal(points.begin(), points.end(), plain.points[i].begin(), plain.points[i].end(),
                                  [](const Point& a, const Point& b) { return a.x == b.x && a.y == b.y; });
    }
    return same;
}

/** Asserts that a table is just as described, and that its sections know it. */
inline void checkTable(const model::Table& table, const PlainContent& content) {
    RC_ASSERT(model::listOf<float>(table, Lyr::PositionList) == content.positions);
    RC_ASSERT(std::is_sorted(content.positions.begin(), content.positions.end()));
    const auto sections = model::sectionsOf(table);
    RC_ASSERT(sections.size() == content.sections.size());
    for (std::size_t i = 0; i < sections.size(); ++i) {
        RC_ASSERT(isLike(*sections[i], content.sections[i]));
        RC_ASSERT(sections[i]->getParentLink().getOwner() == &table);
    }
}

/** Values at, beside and between all boundaries, and at both ends. */
inline std::vector<float> samplesOf(const std::vector<float>& positions) {
    constexpr float LARGEST = std::numeric_limits<float>::max();
    std::vector<float> values{-LARGEST, -1.0f, 0.0f, 1.0f, LARGEST};
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const float at = positions[i];
        values.insert(values.end(), {at, std::nextafter(at, -LARGEST), std::nextafter(at, LARGEST)});
        if (i > 0) {
            for (const double part : {0.125, 0.25, 0.5, 0.75, 0.9375}) {
                values.push_back(float(double(positions[i - 1]) * (1.0 - part) + double(at) * part));
            }
        }
    }
    return values;
}

inline plain::Table evaluated(const PlainContent& content) {
    plain::Table table;
    table.positions = content.positions;
    for (const PlainSection& section : content.sections) {
        plain::Section plain;
        plain.type = section.type;
        for (std::size_t c = 0; c < 4; ++c) {
            for (const Point& point : section.points[c]) {
                plain.points[c].push_back(point.y);
            }
        }
        table.sections.push_back(plain);
    }
    return table;
}

/** Asserts that a table colours like the plain rules do. */
inline void checkColors(const model::Table& table, const PlainContent& content) {
    const plain::Types types{Lyr::Constant, Lyr::Gradient,          Lyr::Rainbow, Lyr::InvertedRainbow,
                             Lyr::Continue, Lyr::BlackGreenBlueRed, Lyr::HueCycle};
    const plain::Table reference = evaluated(content);
    for (const float value : samplesOf(content.positions)) {
        const plain::Result expected = plain::colorIn(types, reference, value, false);
        model::Color color = model::untouched;
        RC_ASSERT(table.getColor(value, color) == expected.colored);
        if (expected.colored) {
            RC_ASSERT(
                model::sameBits(color, {expected.color[0], expected.color[1], expected.color[2], expected.color[3]}));
        }
    }
}

}  // namespace edits
