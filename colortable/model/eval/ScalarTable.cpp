#include <colortable/model/eval/ScalarTable.h>

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace lys::eval {

namespace {

void setOutsideColor(float* out) {
    std::copy_n(outsideColor, channelCount, out);
}

bool colorInSection(const TableView& table, int64_t k, float value, float* out) {
    float low = 0.0f;
    float high = 0.0f;
    sectionInterval(k, table.positions, table.positionCount, &low, &high);
    const SectionData* previous = k > 0 ? &table.sections[k - 1] : nullptr;
    const SectionData* next = k < table.positionCount ? &table.sections[k + 1] : nullptr;
    return sectionColor(table.sections[k], low, high, value, out, previous, next, table.clampedColors);
}

bool fail(Failure* failure, int64_t entry, int64_t section, bool badLink) {
    if (failure)
        *failure = {entry, section, badLink};
    return false;
}

}  // namespace

int64_t findSection(float value, const float* positions, int64_t positionCount) {
    const float* end = positions + positionCount;
    const int64_t below = std::lower_bound(positions, end, value) - positions;
    if (below != 0 || positionCount <= 0)
        return below;
    // Only a value equal to the first boundary passes: anything less has no boundary at or below it. Infinities give
    // NaN.
    const double distance = std::fabs(static_cast<double>(value) - static_cast<double>(positions[0]));
    if (distance <= std::fabs(static_cast<double>(value)) * static_cast<double>(FLT_EPSILON))
        return std::upper_bound(positions, end, value) - positions;
    return below;
}

void sectionInterval(int64_t section, const float* positions, int64_t positionCount, float* low, float* high) {
    *low = section > 0 ? positions[section - 1] : -FLT_MAX;
    *high = section < positionCount ? positions[section] : FLT_MAX;
}

bool isOutside(int64_t section, int64_t positionCount, bool finiteBelow, bool finiteAbove) {
    return (finiteBelow && section <= 0) || (finiteAbove && section >= positionCount);
}

bool scalarColor(const TableView& table, float value, float* out, Failure* failure) {
    const int64_t k = findSection(value, table.positions, table.positionCount);
    if (isOutside(k, table.positionCount, table.finiteBelow, table.finiteAbove)) {
        setOutsideColor(out);
        return true;
    }
    if (!table.sections[k].isSection)
        return fail(failure, 0, k, true);
    return colorInSection(table, k, value, out) || fail(failure, 0, k, false);
}

bool scalarColors(const TableView& table, int64_t count, const float* values, float* out, Failure* failure) {
    for (int64_t i = count - 1; i >= 0; --i) {
        const float value = values[i];
        float* target = out + i * channelCount;
        const int64_t k = findSection(value, table.positions, table.positionCount);
        if (!table.sections[k].isSection)
            return fail(failure, i, k, true);
        if (isOutside(k, table.positionCount, table.finiteBelow, table.finiteAbove))
            setOutsideColor(target);
        else if (!colorInSection(table, k, value, target))
            return fail(failure, i, k, false);
    }
    return true;
}

}  // namespace lys::eval
