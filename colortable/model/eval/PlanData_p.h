#pragma once

#include <cstdint>

#include <colortable/model/eval/ScalarTable.h>

namespace lys::eval {

struct PlanData;

/// Values that a kernel colours with one call: the arrays between its stages stay in the first-level cache.
inline constexpr int blockSize = 128;

/// Colours n (1 … blockSize) values, none of which fails. stream: out is aligned to 64 bytes and the colours may bypass
/// the caches.
using BlockFunction = void (*)(const PlanData& plan, const float* values, int n, float* out, bool stream);

/// Whether one of n values falls into a failing section, by the plan's failing runs.
using FailureFunction = bool (*)(const PlanData& plan, const float* values, int64_t n);

/// What a section needs beyond its start colour, as bits of one word; a constant needs nothing.
enum SectionKind : int32_t {
    gradientKind = 1,
    rainbowKind = 2,
    invertedKind = 4,  ///< beside rainbowKind
    hueKind = 8,
    thirdsKind = 16,
    failingKind = 32,
};
inline constexpr int32_t sineKinds = rainbowKind | invertedKind;
inline constexpr int32_t analyticKinds = sineKinds | hueKind | thirdsKind;
inline constexpr int32_t coloredKinds = gradientKind | analyticKinds;

/// Count and Tree compare floats in registers, Buckets looks up a bucket and finishes with a bisection of ordered
/// integers.
enum class SearchMode : uint8_t { Count, Tree, Buckets };

/// Where interval and kind of a value's section come from: no section needs them, one section does, all of them are
/// held in registers, or in records in memory.
enum class IntervalMode : uint8_t { None, Lone, Lanes, Records };

/// What the registers of an instruction set can hold.
struct KernelTraits {
    int countedBoundaries = 0;  ///< boundaries that are counted one by one
    int treeBoundaries = 0;     ///< boundaries of a search by permutes
    int laneSections = 0;       ///< sections whose intervals are held in registers
    int registerFloats = 0;     ///< sections' colours that one register for each channel holds
    int colorRegisters = 0;     ///< registers for each channel that are worth it
};

/// Neighbouring sections that fail: theirs are the values above `above` up to `upTo`.
struct FailingRun {
    float above;
    float upTo;
};

struct SectionInterval {
    float low;
    float width;
    int32_t kind;
    int32_t unused;
};

inline constexpr int treeLevelSize = 16;
inline constexpr int maxTreeLevels = 5;
inline constexpr int maxLaneSections = 32;
inline constexpr int maxFailingRuns = 8;

/// Narrows the search down to the boundaries in a value's own bucket. Buckets never descend as values ascend, so what
/// lies in lower buckets is below the value and what lies in higher ones is not.
struct BucketIndex {
    const int32_t* keys = nullptr;  ///< boundaries as ordered integers, padded so that no bisection leaves the list
    const uint16_t* starts =
        nullptr;  ///< for each bucket the number of boundaries in lower ones, then the number of all
    bool linear = true;
    float origin = 0.0f;  ///< linear: (value - origin) * scale
    float scale = 0.0f;
    int32_t firstKey = 0;  ///< else, nearly logarithmic: (key - firstKey) >> shift
    int32_t lastKey = 0;
    int32_t shift = 0;
    int32_t lastBucket = 0;
    int32_t levels = 1;    ///< bisection steps that finish the search in nearly all buckets
    bool crowded = false;  ///< some buckets hold more boundaries than that
};

/// A table read once and laid out for the kernels. Borrows the table's memory.
struct PlanData {
    TableView table;
    BlockFunction block = nullptr;  ///< null: the table has no flat form, the scalar path colours
    FailureFunction holdsFailure = nullptr;
    int32_t kinds = 0;  ///< all kinds of the table's sections together
    SearchMode search = SearchMode::Buckets;
    IntervalMode intervals = IntervalMode::None;
    int32_t boundaryCount = 0;
    int32_t treeLevels = 0;
    int32_t colorRegisters = 0;   ///< registers that hold one channel of all sections' colours; 0: records in memory
    bool failsFromBelow = false;  ///< the first section fails, for values up to firstUpTo and for NaN
    float firstUpTo = 0.0f;
    int32_t failingRunCount = 0;  ///< further runs
    FailingRun failingRuns[maxFailingRuns] = {};
    uint32_t loneOffset = 0;
    SectionInterval lone = {};
    BucketIndex buckets;

    // 16 bytes for each section, see slotOf; stages hand a value's section on as the byte offset into these.
    float (*start)[channelCount] = nullptr;
    float (*ends)[2][channelCount] = nullptr;  ///< start and end, 32 bytes for each section
    SectionInterval* interval = nullptr;

    // Filled as far as the modes need them.
    alignas(64) float cuts[maxLaneSections];
    alignas(64) float tree[maxTreeLevels][treeLevelSize];
    alignas(64) float laneLow[maxLaneSections];
    alignas(64) float laneWidth[maxLaneSections];
    alignas(64) int32_t laneKind[maxLaneSections];
    alignas(64) float laneStart[channelCount][maxLaneSections];
    alignas(64) float laneEnd[channelCount][maxLaneSections];
};

/// Whether any value can fail.
inline bool mayFail(const PlanData& plan) {
    return plan.failsFromBelow || plan.failingRunCount > 0;
}

/// Whether a value falls into a failing section.
inline bool fails(const PlanData& plan, float value) {
    bool failing = plan.failsFromBelow && !(value > plan.firstUpTo);
    for (int32_t r = 0; r < plan.failingRunCount; ++r)
        failing = failing || (value > plan.failingRuns[r].above && value <= plan.failingRuns[r].upTo);
    return failing;
}

/// The record of a section. A tree search ends on the path to the section, its first turn in bit 0: records lie in the
/// order of the reversed bits.
inline int32_t slotOf(const PlanData& plan, int32_t section) {
    if (plan.search != SearchMode::Tree)
        return section;
    int32_t slot = 0;
    for (int32_t level = 0; level < plan.treeLevels; ++level)
        slot |= (section >> (plan.treeLevels - 1 - level) & 1) << level;
    return slot;
}

}  // namespace lys::eval
