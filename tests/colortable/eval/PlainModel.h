#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <colortable/model/eval/ScalarTable.h>

/// The rules written down once more, in another manner and for tests only: nothing here calls the code under test.
namespace plain {

using lys::eval::Rule;
using lys::eval::SectionData;

struct Color {
    float c[4] = {0, 0, 0, 0};
};

enum class Outcome { Colored, Untouched, Cleared };

inline uint32_t bitsOf(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

inline float floatOf(uint32_t bits) {
    float v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

/// Every step goes through memory, so that no compiler keeps more precision or joins two steps.
inline float step(float v) {
    volatile float kept = v;
    return kept;
}

inline float fraction(float low, float high, float value) {
    const float width = step(high - low);
    const float distance = step(value - low);
    const float quotient = step(distance / width);
    if (quotient >= 1.0f)
        return 1.0f;
    return quotient > 0.0f ? quotient : 0.0f;
}

inline float unit(float v) {
    if (v < 0.0f)
        return 0.0f;
    return v > 1.0f ? 1.0f : v;
}

inline float sine(float argument) {
    return static_cast<float>(std::sin(double(argument)));
}

inline void ramp(float t, const std::vector<float>& bounds, float factor, const std::vector<const char*>& pieces,
                 float* rgb) {
    size_t piece = 0;
    while (piece + 1 < bounds.size() && t >= bounds[piece + 1])
        ++piece;
    const float s = step(step(t - bounds[piece]) * factor);
    for (int c = 0; c < 3; ++c) {
        switch (pieces[piece][c]) {
            case '1':
                rgb[c] = 1.0f;
                break;
            case '+':
                rgb[c] = s;
                break;
            case '-':
                rgb[c] = step(1.0f - s);
                break;
            default:
                rgb[c] = 0.0f;
                break;
        }
    }
}

inline Outcome section(const SectionData& data, float low, float high, float value, Color* out,
                       const SectionData* previous, const SectionData* next) {
    if (low >= high)
        return Outcome::Untouched;
    *out = Color();
    const float t = fraction(low, high, value);
    Color raw;
    raw.c[3] = data.has[3] ? data.first[3] : 1.0f;
    const float pi = 3.1415927f;
    float u = t;
    switch (data.rule) {
        case Rule::Constant:
            for (int c = 0; c < 4; ++c)
                out->c[c] = data.has[c] ? data.first[c] : 0.0f;
            return Outcome::Colored;
        case Rule::Gradient:
            for (int c = 0; c < 4; ++c) {
                const float start = step(step(1.0f - t) * (data.has[c] ? data.first[c] : 0.0f));
                const float end = step(t * (data.has[c] ? data.last[c] : 0.0f));
                out->c[c] = step(start + end);
            }
            return Outcome::Colored;
        case Rule::Continue:
            if (previous && previous->isSection)
                return section(*previous, 0, 1, 1, out, nullptr, nullptr);
            if (next && next->isSection)
                return section(*next, 0, 1, 0, out, nullptr, nullptr);
            return Outcome::Cleared;
        case Rule::InvertedRainbow:
            u = step(1.0f - t);
            [[fallthrough]];
        case Rule::Rainbow:
            raw.c[0] = sine(step(step(u - 0.5f) * pi));
            raw.c[1] = sine(step(u * pi));
            raw.c[2] = sine(step(step(u + 0.5f) * pi));
            break;
        case Rule::BlackGreenBlueRed:
            ramp(t, {0.0f, 0.33333334f, 0.6666667f}, 3.0f, {"0+0", "0-+", "+0-"}, raw.c);
            break;
        case Rule::HueCycle:
            ramp(t, {0.0f, 0.16666667f, 0.33333334f, 0.5f, 0.6666667f, 0.8333333f}, 6.0f,
                 {"1+0", "-10", "01+", "0-1", "+01", "10-"}, raw.c);
            break;
        default:
            return Outcome::Cleared;
    }
    for (int c = 0; c < 4; ++c)
        out->c[c] = unit(raw.c[c]);
    return Outcome::Colored;
}

/// Index by counting, for ascending lists without NaN.
inline int64_t sectionIndex(const std::vector<float>& positions, float value) {
    int64_t strictly = 0;
    int64_t orEqual = 0;
    for (const float p : positions) {
        strictly += p < value;
        orEqual += p <= value;
    }
    const double distance = std::abs(double(value) - double(positions[0]));
    return strictly == 0 && distance <= std::abs(double(value)) * 1.1920928955078125e-07 ? orEqual : strictly;
}

struct Table {
    std::vector<float> positions;
    std::vector<SectionData> sections;
    bool below = false;
    bool above = false;

    lys::eval::TableView view() const {
        return {positions.data(), int64_t(positions.size()), sections.data(), below, above, false};
    }
};

inline Outcome colorInTable(const Table& table, size_t k, float value, Color* out) {
    const float largest = std::numeric_limits<float>::max();
    const size_t last = table.positions.size();
    return section(table.sections[k], k == 0 ? -largest : table.positions[k - 1],
                   k == last ? largest : table.positions[k], value, out, k == 0 ? nullptr : &table.sections[k - 1],
                   k == last ? nullptr : &table.sections[k + 1]);
}

inline bool black(const Table& table, size_t k) {
    return (table.below && k == 0) || (table.above && k == table.positions.size());
}

inline Outcome one(const Table& table, float value, Color* out) {
    const size_t k = size_t(sectionIndex(table.positions, value));
    if (black(table, k)) {
        *out = {{0, 0, 0, 1}};
        return Outcome::Colored;
    }
    return table.sections[k].isSection ? colorInTable(table, k, value, out) : Outcome::Untouched;
}

/// Colours from the last value on; returns the index of the failing entry or -1.
inline int64_t many(const Table& table, const std::vector<float>& values, std::vector<Color>* out) {
    for (int64_t i = int64_t(values.size()) - 1; i >= 0; --i) {
        const size_t at = size_t(i);
        const size_t k = size_t(sectionIndex(table.positions, values[at]));
        if (!table.sections[k].isSection)
            return i;
        if (black(table, k))
            (*out)[at] = {{0, 0, 0, 1}};
        else if (colorInTable(table, k, values[at], &(*out)[at]) != Outcome::Colored)
            return i;
    }
    return -1;
}

}  // namespace plain
