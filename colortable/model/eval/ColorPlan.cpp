#include <colortable/model/eval/ColorPlan.h>

#include <algorithm>
#include <functional>
#include <new>

#include <colortable/model/eval/BucketIndex_p.h>
#include <colortable/model/eval/KernelTarget_p.h>
#include <colortable/model/eval/PlanSections_p.h>

namespace lys::eval {

namespace {

constexpr std::align_val_t lineAlignment{64};
constexpr int64_t lineBytes = 64;
constexpr int64_t bytesPerColor = channelCount * static_cast<int64_t>(sizeof(float));

/// From this size on the colours bypass the caches; below they are still there when they are read again.
constexpr int64_t streamedBytes = int64_t{1} << 24;

/// Fewer colours lie in pages that the machine has looked up lately.
constexpr int64_t colorsInFewPages = 4096;

/// Values of a piece whose failures are looked for before it is coloured.
constexpr int64_t checkedSize = 8192;

/// Section offsets in bytes have to fit into 32 bits.
constexpr int64_t mostBoundaries = int64_t{1} << 27;

/// Searched by bisection like any list, but kernels count on ascending order; a NaN fails the comparison.
bool ascends(const float* positions, int64_t count) {
    bool ascending = positions[0] == positions[0];
    for (int64_t k = 1; k < count; ++k)
        ascending = ascending && positions[k - 1] <= positions[k];
    return ascending;
}

/// The scalar path reads each value before it writes the colour; blocks read many and write in another order.
bool overlap(int64_t count, const float* values, const float* out) {
    const std::less<const float*> before;
    return before(values, out + count * channelCount) && before(out, values + count);
}

int64_t colorizeScalar(const TableView& table, int64_t count, const float* values, float* out) {
    for (int64_t i = count - 1; i >= 0; --i) {
        float color[channelCount];
        if (!scalarColors(table, 1, values + i, color))
            return i;
        std::copy_n(color, channelCount, out + i * channelCount);
    }
    return -1;
}

/// Colours before the first whole line of the output; -1 when colours do not fall on the lines' starts at all.
int64_t colorsBeforeLine(const float* out) {
    const auto past = static_cast<int64_t>(reinterpret_cast<uintptr_t>(out) % lineBytes);
    if (past % bytesPerColor != 0)
        return -1;
    return (lineBytes - past) % lineBytes / bytesPerColor;
}

/// Looks up the addresses of the memory pages that come next: waiting for them block by block takes a third of the time
/// where pages are small.
void askForPages(int64_t at, int64_t count, const float* values, const float* out) {
    constexpr int64_t pageBytes = 4096;
    constexpr int64_t colorsAhead = 2 * pageBytes / bytesPerColor;
    constexpr int64_t valuesAhead = pageBytes / int64_t{sizeof(float)} + colorsAhead;
    __builtin_prefetch(out + std::min(at + colorsAhead, count - 1) * channelCount, 1);
    __builtin_prefetch(values + std::min(at + valuesAhead, count - 1));
}

int64_t roundedUp(int64_t bytes) {
    return (bytes + lineBytes - 1) / lineBytes * lineBytes;
}

}  // namespace

ColorPlan::ColorPlan() = default;

ColorPlan::~ColorPlan() {
    ::operator delete(heap_, lineAlignment);
}

bool ColorPlan::build(const TableView& table) {
    return buildFor(bestKernelTarget(), table);
}

bool ColorPlan::build(const float* positions, int64_t positionCount, const SectionData* sections, bool finiteBelow,
                      bool finiteAbove) {
    return build({positions, positionCount, sections, finiteBelow, finiteAbove, false});
}

bool ColorPlan::takeMemory(bool withBuckets, int32_t** keys, uint16_t** starts) {
    const int64_t boundaries = data_.boundaryCount;
    if (boundaries < inlineSections) {
        data_.start = inline_.start;
        data_.ends = inline_.ends;
        data_.interval = inline_.interval;
        *keys = inline_.keys;
        *starts = inline_.starts;
        return true;
    }
    const int64_t recordBytes = roundedUp((boundaries + 1) * int64_t{sizeof(SectionInterval)});
    const int64_t keyBytes = withBuckets ? roundedUp(paddedKeyCount(boundaries) * int64_t{sizeof(int32_t)}) : 0;
    const int64_t startBytes = withBuckets ? (bucketCountFor(boundaries) + 1) * int64_t{sizeof(uint16_t)} : 0;
    heap_ = ::operator new(static_cast<size_t>(4 * recordBytes + keyBytes + startBytes), lineAlignment, std::nothrow);
    if (!heap_)
        return false;
    auto* at = static_cast<std::byte*>(heap_);
    data_.start = reinterpret_cast<float(*)[channelCount]>(at);
    data_.ends = reinterpret_cast<float(*)[2][channelCount]>(at + recordBytes);
    data_.interval = reinterpret_cast<SectionInterval*>(at + 3 * recordBytes);
    *keys = reinterpret_cast<int32_t*>(at + 4 * recordBytes);
    *starts = reinterpret_cast<uint16_t*>(at + 4 * recordBytes + keyBytes);
    return true;
}

bool ColorPlan::buildFor(KernelTarget target, const TableView& table) {
    ::operator delete(heap_, lineAlignment);
    heap_ = nullptr;
    data_.block = nullptr;
    data_.kinds = 0;
    data_.failsFromBelow = false;
    data_.failingRunCount = 0;
    data_.table = table;
    if (table.positionCount > mostBoundaries || !ascends(table.positions, table.positionCount))
        return true;
    data_.boundaryCount = static_cast<int32_t>(table.positionCount);
    const Kernel kernel = kernelFor(target);
    int32_t* keys = nullptr;
    uint16_t* starts = nullptr;
    const bool withBuckets = !addRegisterSearch(kernel.traits, &data_);
    if (withBuckets)
        data_.search = SearchMode::Buckets;
    if (!takeMemory(withBuckets, &keys, &starts))
        return false;
    if (!addSections(kernel.traits, &data_))
        return true;
    if (withBuckets)
        buildBucketIndex(table.positions, table.positionCount, keys, starts, &data_.buckets);
    data_.block = kernel.block;
    data_.holdsFailure = kernel.holdsFailure;
    return true;
}

/// Colours values that cannot fail. Ascending, as the machine reads ahead best.
void ColorPlan::colorizeAll(int64_t count, const float* values, float* out, bool stream) const {
    const int64_t odd = stream ? std::min(count, colorsBeforeLine(out)) : 0;
    if (odd > 0)
        data_.block(data_, values, static_cast<int>(odd), out, false);
    for (int64_t at = odd; at < count; at += blockSize) {
        const int64_t n = std::min<int64_t>(blockSize, count - at);
        if (count >= colorsInFewPages)
            askForPages(at, count, values, out);
        data_.block(data_, values + at, static_cast<int>(n), out + at * channelCount, stream);
    }
}

/// Goes back from the end in pieces that stay in the cache between the check and the colouring; each is coloured
/// ascending.
int64_t ColorPlan::colorizeChecked(int64_t count, const float* values, float* out, bool stream) const {
    for (int64_t end = count; end > 0;) {
        const int64_t begin = end > checkedSize ? (end - 1) / checkedSize * checkedSize : 0;
        int64_t good = begin;
        if (data_.holdsFailure(data_, values + begin, end - begin)) {
            good = end;
            while (!fails(data_, values[good - 1]))
                --good;
        }
        colorizeAll(end - good, values + good, out + good * channelCount, stream);
        if (good != begin)
            return good - 1;
        end = begin;
    }
    return -1;
}

int64_t ColorPlan::colorize(int64_t count, const float* values, float* out) const {
    if (count <= 0)
        return -1;
    if (!data_.block || overlap(count, values, out))
        return colorizeScalar(data_.table, count, values, out);
    const bool stream = count * bytesPerColor >= streamedBytes && colorsBeforeLine(out) >= 0;
    int64_t failing = -1;
    if (mayFail(data_))
        failing = colorizeChecked(count, values, out, stream);
    else
        colorizeAll(count, values, out, stream);
    if (stream)
        finishStreaming();
    return failing;
}

bool ColorPlan::pays(int64_t count, int64_t positionCount) {
    // Measured: reading a section out of its object and laying it out takes about as long as colouring 1.2 constants.
    return count >= 4 + (positionCount + 1) * 5 / 4;
}

}  // namespace lys::eval
