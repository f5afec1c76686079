#pragma once

#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrInterval.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrValuePair.h>
#include <lyr_core/LyrVector2.h>

#include <array>
#include <vector>

/** What the table editor does to tables: each a plain write to the model, to be done inside a user action. What
 *  cannot be written whole returns false; the action is to be aborted then. */
namespace lys::editor {

/** Indices of sections, first to last. */
using SectionRange = LyrInterval<long long, long long>;

/** Boundaries and sections of a table, read at one time. */
struct TableContent {
    std::vector<float> positions;
    std::vector<LyrObjectLink> sections;

    /** Nothing without a table. */
    static TableContent of(const LyrObject* table);

    long long positionCount() const { return static_cast<long long>(positions.size()); }
    long long sectionCount() const { return static_cast<long long>(sections.size()); }
    bool isConsistent() const { return positionCount() >= 2 && sectionCount() == positionCount() + 1; }
    /** Null outside the list, and for a link that leads to no section. */
    LyrColorLookupTable::Section* sectionAt(long long index) const;
};

/** The largest range that a table's boundaries may lie in; all floats if it says nothing. */
LyrValuePair<float> maximumRangeOf(const LyrObject* table);

/** Moves one boundary: brought into the range, then between its neighbours, the lower one first; then every boundary
 * that lies below its predecessor is raised to it. An index outside the list changes nothing. */
void movePosition(std::vector<float>& positions, long long index, float value, const LyrValuePair<float>& range);

/** Gives a section another type and the points that it starts with; to go on like a neighbour it needs none and keeps
 * its own. Its present type changes nothing. */
bool changeType(LyrObject& section, Lyrenum type);

/** Makes one section of several: the first keeps its type and points and reaches to the end of the last. False for
 *  fewer than two, for the outer sections and for an inconsistent table. */
bool mergeSections(LyrObject& table, const SectionRange& range);
/** Halves an inner section; both halves have its type and points. False for others. */
bool splitSection(LyrObject& table, long long index);

/** The control points of a section: red, green, blue, alpha. */
struct ControlPoints {
    using List = std::vector<LyrVector2<float>>;
    std::array<List, 4> channels;

    static ControlPoints of(const LyrObject& section);
    bool store(LyrObject& section) const;

    /** Appends points until there are `count` in each list: (k, 0) as the k-th of a colour, (k, 1) of alpha. */
    void extendTo(std::size_t count);
    LyrRGBA<float> colorAt(std::size_t index) const;
    void setColorAt(std::size_t index, const LyrRGBA<float>& color);
};

/** The opacity of a section coloured by a scheme: its first alpha point, 1 without one. */
float opacityOf(const LyrObject& section);
bool setOpacity(LyrObject& section, float opacity);

}  // namespace lys::editor
