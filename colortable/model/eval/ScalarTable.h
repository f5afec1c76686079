#pragma once

#include <cstdint>

#include <colortable/model/eval/SectionRule.h>

namespace lys::eval {

/// A table as evaluation sees it: P boundaries cut the value axis into P + 1 sections. Borrowed memory, nothing owned.
struct TableView {
    const float* positions = nullptr;
    int64_t positionCount = 0;
    const SectionData* sections = nullptr;  ///< positionCount + 1 entries
    bool finiteBelow = false;               ///< values in the first section are black
    bool finiteAbove = false;               ///< values in the last section are black
    bool clampedColors = false;             ///< the colour type is in clamped mode
};

/// Why an evaluation stopped, for the caller's message.
struct Failure {
    int64_t entry = -1;    ///< index of the value that could not be coloured
    int64_t section = -1;  ///< section that the value fell into
    bool badLink = false;  ///< the section's link leads to no section
};

/// Opaque black, the colour outside of a range with a finite end.
inline constexpr float outsideColor[channelCount] = {0.0f, 0.0f, 0.0f, 1.0f};

/// Index of the section that value falls into, 0 … positionCount. A value on a boundary belongs to the section below
/// it, but a value on the first boundary to the sections above (and above its twins). Any list of boundaries will do;
/// one that does not ascend is searched as std::lower_bound and std::upper_bound would.
int64_t findSection(float value, const float* positions, int64_t positionCount);

/// The interval of a section; the open ends are the largest finite floats.
void sectionInterval(int64_t section, const float* positions, int64_t positionCount, float* low, float* high);

/// True when values of the section are black because the range is finite on its side.
bool isOutside(int64_t section, int64_t positionCount, bool finiteBelow, bool finiteAbove);

/// Colour of one value (4 floats). The finite ends come before the section's link: a bad link outside a finite range
/// does not matter here. False leaves out as sectionColor does; a bad link leaves it untouched.
bool scalarColor(const TableView& table, float value, float* out, Failure* failure = nullptr);

/// Colours of count values, the last one first (4 floats each). The section's link comes before the finite ends: a bad
/// link fails even where the value would be black. The first failure ends the work: entries above the failing one are
/// coloured, those below are untouched.
bool scalarColors(const TableView& table, int64_t count, const float* values, float* out, Failure* failure = nullptr);

}  // namespace lys::eval
