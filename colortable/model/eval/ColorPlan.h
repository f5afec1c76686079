#pragma once

#include <cstddef>
#include <cstdint>

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

enum class KernelTarget : uint8_t;

/// A table read once into a flat form, to colour an array with vector kernels; every colour equals the scalar path's
/// bit for bit. Built for one call and thrown away: the memory of the table has to stay as it is while the plan is
/// used. Several threads may colour with one plan. Up to 63 boundaries nothing is allocated.
class ColorPlan {
public:
    ColorPlan();
    ~ColorPlan();
    ColorPlan(const ColorPlan&) = delete;
    ColorPlan& operator=(const ColorPlan&) = delete;

    /// Reads a valid table: at least two boundaries, one section more. False when there is no memory for the plan; the
    /// scalar path needs none.
    bool build(const TableView& table);
    bool build(const float* positions, int64_t positionCount, const SectionData* sections, bool finiteBelow,
               bool finiteAbove);

    /// The same for the kernels of one instruction set, which has to be available on this machine.
    bool buildFor(KernelTarget target, const TableView& table);

    /// Colours count values (4 floats each) and returns -1, or the index of the last value that cannot be coloured:
    /// colours above it are written, it and those below are untouched. Whoever needs the failing entry as the scalar
    /// path leaves it asks scalarColors for that one value.
    int64_t colorize(int64_t count, const float* values, float* out) const;

    /// False when the table has no flat form (boundaries that do not ascend, NaN in a blend, many failing
    /// sections) and the scalar path
    /// colours.
    bool isFlat() const { return data_.block != nullptr; }

    /// Whether a plan is worth building for so many values; below, the scalar path is done sooner.
    static bool pays(int64_t count, int64_t positionCount);

private:
    static constexpr int inlineSections = 64;

    struct InlineMemory {
        alignas(64) float start[inlineSections][channelCount];
        alignas(64) float ends[inlineSections][2][channelCount];
        alignas(64) SectionInterval interval[inlineSections];
        alignas(64) int32_t keys[2 * inlineSections];
        uint16_t starts[4 * inlineSections + 1];
    };

    void colorizeAll(int64_t count, const float* values, float* out, bool stream) const;
    int64_t colorizeChecked(int64_t count, const float* values, float* out, bool stream) const;
    bool takeMemory(bool withBuckets, int32_t** keys, uint16_t** starts);

    PlanData data_;
    void* heap_ = nullptr;
    InlineMemory inline_;
};

}  // namespace lys::eval
