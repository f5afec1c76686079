#include <colortable/model/eval/PlanSections_p.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace lys::eval {

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

struct Resolved {
    float start[channelCount] = {0.0f, 0.0f, 0.0f, 0.0f};
    float end[channelCount] = {-0.0f, -0.0f, -0.0f, -0.0f};
    SectionInterval interval = {0.0f, infinity, 0, 0};  // a place of 0 for every value
};

int32_t kindOf(Rule rule) {
    switch (rule) {
        case Rule::Gradient:
            return gradientKind;
        case Rule::Rainbow:
            return rainbowKind;
        case Rule::InvertedRainbow:
            return rainbowKind | invertedKind;
        case Rule::HueCycle:
            return hueKind;
        case Rule::BlackGreenBlueRed:
            return thirdsKind;
        default:
            return 0;
    }
}

/// The blend or the analytic rule of a section that has an interval; analytic colours join a start of 0 but for alpha.
void resolveColored(const SectionData& section, float low, float high, Resolved* out) {
    out->interval = {low, high - low, kindOf(section.rule), 0};
    if (section.rule != Rule::Gradient) {
        out->start[alphaChannel] = section.has[alphaChannel] ? clampedChannel(section.first[alphaChannel]) : 1.0f;
        return;
    }
    for (int c = 0; c < channelCount; ++c) {
        out->start[c] = section.has[c] ? section.first[c] : 0.0f;
        out->end[c] = section.has[c] ? section.last[c] : 0.0f;
    }
}

/// Order of effects as in scalarColors: a bad link fails even where a finite end would paint it black.
void resolve(const TableView& table, int64_t k, Resolved* out) {
    const SectionData& section = table.sections[k];
    float low = 0.0f;
    float high = 0.0f;
    sectionInterval(k, table.positions, table.positionCount, &low, &high);
    bool ok = section.isSection;
    if (ok && isOutside(k, table.positionCount, table.finiteBelow, table.finiteAbove)) {
        std::copy_n(outsideColor, channelCount, out->start);
        return;
    }
    if (ok && low < high && kindOf(section.rule) != 0)
        return resolveColored(section, low, high, out);
    // What is left has one colour for all values, or none.
    const SectionData* previous = k > 0 ? &table.sections[k - 1] : nullptr;
    const SectionData* next = k < table.positionCount ? &table.sections[k + 1] : nullptr;
    ok = ok && sectionColor(section, low, high, low, out->start, previous, next, table.clampedColors);
    if (!ok)
        out->interval.kind = failingKind;
}

bool holdsNan(const Resolved& section) {
    bool found = false;
    for (int c = 0; c < channelCount; ++c)
        found = found || std::isnan(section.start[c]) || std::isnan(section.end[c]);
    return found;
}

void addLaneInterval(int32_t slot, const SectionInterval& interval, PlanData* plan) {
    plan->laneLow[slot] = interval.low;
    plan->laneWidth[slot] = interval.width;
    plan->laneKind[slot] = interval.kind;
}

void addLaneColors(int32_t slot, const Resolved& section, PlanData* plan) {
    for (int c = 0; c < channelCount; ++c) {
        plan->laneStart[c][slot] = section.start[c];
        plan->laneEnd[c][slot] = section.end[c];
    }
}

void addRecords(int32_t slot, const Resolved& section, PlanData* plan) {
    std::copy_n(section.start, channelCount, plan->start[slot]);
    std::copy_n(section.start, channelCount, plan->ends[slot][0]);
    std::copy_n(section.end, channelCount, plan->ends[slot][1]);
}

/// Slots that sections lie in, with the gaps of an incomplete tree.
int32_t slotCount(const PlanData& plan) {
    return plan.search == SearchMode::Tree ? 1 << plan.treeLevels : plan.boundaryCount + 1;
}

int32_t colorRegistersFor(const KernelTraits& traits, int32_t slots) {
    for (int32_t registers = 1; registers <= traits.colorRegisters; ++registers) {
        if (slots <= registers * traits.registerFloats)
            return registers;
    }
    return 0;
}

IntervalMode intervalModeFor(const KernelTraits& traits, int32_t slots, int32_t coloredSections) {
    if (coloredSections == 0)
        return IntervalMode::None;
    if (coloredSections == 1)
        return IntervalMode::Lone;
    return slots <= traits.laneSections ? IntervalMode::Lanes : IntervalMode::Records;
}

/// The largest float below a boundary that values equal to it have to pass.
float loweredBoundary(const float* positions, int64_t k) {
    const float p = positions[k];
    return p == positions[0] && std::isfinite(p) ? std::nextafter(p, -infinity) : p;
}

/// Notes the values of a failing section; between twin boundaries there are none. False when there are too many runs.
bool addFailure(int32_t section, PlanData* plan) {
    const float* positions = plan->table.positions;
    const float upTo = section < plan->boundaryCount ? loweredBoundary(positions, section) : infinity;
    if (section == 0) {
        plan->failsFromBelow = true;
        plan->firstUpTo = upTo;
        return true;
    }
    const float above = loweredBoundary(positions, section - 1);
    if (!(above < upTo))
        return true;
    FailingRun* last = plan->failingRunCount > 0 ? &plan->failingRuns[plan->failingRunCount - 1] : nullptr;
    if (last && last->upTo == above) {
        last->upTo = upTo;
        return true;
    }
    if (plan->failingRunCount == maxFailingRuns)
        return false;
    plan->failingRuns[plan->failingRunCount++] = {above, upTo};
    return true;
}

}  // namespace

bool addSections(const KernelTraits& traits, PlanData* plan) {
    const int32_t slots = slotCount(*plan);
    plan->colorRegisters = colorRegistersFor(traits, slots);
    int32_t coloredSections = 0;
    bool nan = false;
    bool fits = true;
    for (int32_t k = 0; k <= plan->boundaryCount; ++k) {
        Resolved section;
        resolve(plan->table, k, &section);
        const SectionInterval& interval = section.interval;
        const int32_t slot = slotOf(*plan, k);
        plan->interval[slot] = interval;
        plan->kinds |= interval.kind;
        nan = nan || holdsNan(section);
        if (plan->colorRegisters != 0)
            addLaneColors(slot, section, plan);
        else
            addRecords(slot, section, plan);
        if (slots <= traits.laneSections)
            addLaneInterval(slot, interval, plan);
        fits = ((interval.kind & failingKind) == 0 || addFailure(k, plan)) && fits;
        if ((interval.kind & coloredKinds) != 0) {
            ++coloredSections;
            plan->lone = interval;
            plan->loneOffset = static_cast<uint32_t>(slot) * uint32_t{sizeof(SectionInterval)};
        }
    }
    plan->intervals = intervalModeFor(traits, slots, coloredSections);
    return fits && !(nan && (plan->kinds & gradientKind) != 0);
}

bool addRegisterSearch(const KernelTraits& traits, PlanData* plan) {
    const int32_t count = plan->boundaryCount;
    if (count > traits.countedBoundaries && count > traits.treeBoundaries)
        return false;
    for (int32_t k = 0; k < count; ++k)
        plan->cuts[k] = loweredBoundary(plan->table.positions, k);
    std::fill(plan->cuts + count, plan->cuts + maxLaneSections, infinity);
    plan->search = count <= traits.countedBoundaries ? SearchMode::Count : SearchMode::Tree;
    if (plan->search == SearchMode::Count)
        return true;
    plan->treeLevels = std::max(3, static_cast<int>(std::bit_width(static_cast<uint32_t>(count))));
    for (int32_t level = 0; level < plan->treeLevels; ++level) {
        for (int32_t node = 0; node < 1 << level; ++node) {
            // The node's first turn is its bit 0, which counts most in the order of boundaries.
            int32_t boundary = (1 << (plan->treeLevels - 1 - level)) - 1;
            for (int32_t turn = 0; turn < level; ++turn)
                boundary += (node >> turn & 1) << (plan->treeLevels - 1 - turn);
            plan->tree[level][node] = plan->cuts[boundary];
        }
    }
    return true;
}

}  // namespace lys::eval
