#pragma once

#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrInterval.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrValuePair.h>

#include <vector>

/** What the table editor does to tables: each a plain write to the model, to be done inside a user action. What cannot
 *  be written whole is not written: false, and an error where memory ran out. */
namespace lys::editor {

/** Indices of sections, first to last. */
using SectionRange = LyrInterval<long long, long long>;

/** Boundaries and sections of a table, read at one time. */
struct TableContent {
    std::vector<float> positions;
    std::vector<LyrObjectLink> sections;

    /** Nothing without a table, and where memory ran out, which is reported. */
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

/** The colour of a section's control point; where a point is missing, black and opaque. */
LyrRGBA<float> colorPointOf(const LyrObject& section, long long index);
/** Colours a control point. Points that are missing up to it are appended: (k, 0) as the k-th of a colour, (k, 1) of
 * alpha. */
bool setColorPoint(LyrObject& section, long long index, const LyrRGBA<float>& color);

/** The opacity of a section coloured by a scheme: its first alpha point, 1 without one. */
float opacityOf(const LyrObject& section);
bool setOpacity(LyrObject& section, float opacity);

}  // namespace lys::editor
