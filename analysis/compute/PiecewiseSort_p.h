#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include <analysis/compute/AnalysisTask_p.h>

namespace lyranalysis {

/** What a sort takes beside the values, in bytes. */
template <typename Value>
constexpr std::uint64_t sortBytes(std::size_t count) {
    return std::uint64_t{count} * sizeof(Value);
}

/** Sets the length of a vector in steps, so that a cancelled task ends soon: new pages cost time. False when stopped.
 */
template <typename Value>
bool resizeInSteps(std::vector<Value>& values, std::size_t count, const Value& value, const AnalysisTask& task) {
    constexpr std::size_t kStep = (std::size_t{1} << 22U) / sizeof(Value) + 1;
    values.reserve(count);
    while (values.size() < count) {
        if (task.isStopped()) {
            return false;
        }
        values.resize(std::min(count, values.size() + kStep), value);
    }
    return true;
}

/** How many of the first `taken` values in order, of two rows merged, come from the first row; it goes first where both
 *  have equal ones. */
template <typename Value, typename Less>
std::size_t shareOfFirst(const Value* a, std::size_t countA, const Value* b, std::size_t countB, std::size_t taken,
                         const Less& less) {
    std::size_t low = taken > countB ? taken - countB : 0;
    std::size_t high = std::min(taken, countA);
    while (low < high) {
        const std::size_t i = low + (high - low) / 2;
        if (less(b[taken - i - 1], a[i])) {
            high = i;
        } else {
            low = i + 1;
        }
    }
    return low;
}

/** Sorts on all threads, in pieces that take milliseconds each: pieces are sorted, then pairs of rows are merged, each
 *  piece of the merged row on its own. Equal values keep their order for any number of threads only if `less` tells all
 *  values apart that differ. False when stopped; the values are then in any order, and some may be lost. */
template <typename Value, typename Less>
bool sortInPieces(std::vector<Value>& values, AnalysisTask& task, double weight, const Less& less) {
    constexpr std::size_t kPiece = std::size_t{1} << 15U;
    const std::size_t count = values.size();
    const std::size_t pieces = (count + kPiece - 1) / kPiece;
    int rounds = 1;
    for (std::size_t length = kPiece; length < count; length *= 2) {
        ++rounds;
    }
    if (!task.stage(weight / rounds, pieces, [&](std::size_t piece, std::size_t) {
            std::sort(values.data() + piece * kPiece, values.data() + std::min((piece + 1) * kPiece, count), less);
        })) {
        return false;
    }
    std::vector<Value> merged;
    if (rounds > 1 && !resizeInSteps(merged, count, Value{}, task)) {
        return false;
    }
    for (std::size_t length = kPiece; length < count; length *= 2) {
        if (!task.stage(weight / rounds, pieces, [&](std::size_t piece, std::size_t) {
                const std::size_t begin = piece * kPiece / (2 * length) * (2 * length);
                const std::size_t countA = std::min(length, count - begin);
                const std::size_t countB = std::min(2 * length, count - begin) - countA;
                const Value* const a = values.data() + begin;
                const Value* const b = a + countA;
                const std::size_t from = piece * kPiece - begin;
                const std::size_t to = std::min(from + kPiece, countA + countB);
                const std::size_t firstA = shareOfFirst(a, countA, b, countB, from, less);
                const std::size_t lastA = shareOfFirst(a, countA, b, countB, to, less);
                std::merge(a + firstA, a + lastA, b + (from - firstA), b + (to - lastA), merged.data() + begin + from,
                           less);
            })) {
            return false;
        }
        values.swap(merged);
    }
    return true;
}

}  // namespace lyranalysis
