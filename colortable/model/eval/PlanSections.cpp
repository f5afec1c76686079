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

void addLaneTables(PlanData* plan) {
    for (int32_t k = 0; k <= plan->boundaryCount; ++k) {
        plan->laneLow[k] = plan->interval[k].low;
        plan->laneWidth[k] = plan->interval[k].width;
        plan->laneKind[k] = plan->interval[k].kind;
    }
}

IntervalMode intervalModeFor(const KernelTraits& traits, int32_t boundaryCount, int32_t coloredSections) {
    if (coloredSections == 0)
        return IntervalMode::None;
    if (coloredSections == 1)
        return IntervalMode::Lone;
    return boundaryCount < traits.laneSections ? IntervalMode::Lanes : IntervalMode::Records;
}

/// The largest float below a boundary that values equal to it have to pass.
float loweredBoundary(const float* positions, int64_t k) {
    const float p = positions[k];
    return p == positions[0] && std::isfinite(p) ? std::nextafter(p, -infinity) : p;
}

}  // namespace

bool addSections(const KernelTraits& traits, PlanData* plan) {
    int32_t coloredSections = 0;
    bool nan = false;
    for (int32_t k = 0; k <= plan->boundaryCount; ++k) {
        Resolved section;
        resolve(plan->table, k, &section);
        std::copy_n(section.start, channelCount, plan->start[k]);
        std::copy_n(section.end, channelCount, plan->end[k]);
        plan->interval[k] = section.interval;
        plan->kinds |= section.interval.kind;
        nan = nan || holdsNan(section);
        if ((section.interval.kind & failingKind) != 0 && k < 32)
            plan->failingSections |= 1u << k;
        if ((section.interval.kind & coloredKinds) != 0) {
            ++coloredSections;
            plan->lone = section.interval;
            plan->loneOffset = static_cast<uint32_t>(k) * uint32_t{sizeof(SectionInterval)};
        }
    }
    plan->intervals = intervalModeFor(traits, plan->boundaryCount, coloredSections);
    if (plan->intervals == IntervalMode::Lanes)
        addLaneTables(plan);
    return !(nan && (plan->kinds & gradientKind) != 0);
}

bool addRegisterSearch(const KernelTraits& traits, PlanData* plan) {
    const int32_t count = plan->boundaryCount;
    if (count > traits.countedBoundaries && count > traits.treeBoundaries)
        return false;
    for (int32_t k = 0; k < count; ++k)
        plan->cuts[k] = loweredBoundary(plan->table.positions, k);
    plan->search = SearchMode::Count;
    if (count <= traits.countedBoundaries)
        return true;
    plan->search = SearchMode::Tree;
    std::fill(plan->cuts + count, plan->cuts + maxLaneSections, infinity);
    plan->treeLevels = std::max(3, static_cast<int>(std::bit_width(static_cast<uint32_t>(count))));
    for (int32_t level = 0; level < plan->treeLevels; ++level) {
        const int32_t half = 1 << (plan->treeLevels - 1 - level);
        for (int32_t node = 0; node < 1 << level; ++node)
            plan->tree[level][node] = plan->cuts[(2 * node + 1) * half - 1];
    }
    return true;
}

}  // namespace lys::eval
