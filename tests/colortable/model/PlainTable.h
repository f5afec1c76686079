#pragma once

#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <vector>

/** A colour table written down as plainly as can be, for comparison: it shares nothing with the library but the numbers
 * of the section types. Single-precision steps are formed in double and narrowed: for +, −, · and / of two floats that
 * is the correctly rounded single result, whatever the compiler makes of it. */
namespace plain {

enum class Kind { Section, Nothing, Stranger };

struct Section {
    Kind kind = Kind::Section;
    int type = 0;
    std::array<std::vector<float>, 4> points;  ///< the values of the control points: red, green, blue, alpha
};

struct Table {
    std::vector<float> positions;
    std::vector<Section> sections;
    int below = 0;
    int above = 0;
    bool ascending = true;
};

/** The numbers of the types that have a rule. */
struct Types {
    int constant, gradient, rainbow, invertedRainbow, proceed, blackGreenBlueRed, hueCycle;
};

struct Result {
    bool colored = false;
    bool written = false;   ///< the output was touched
    bool reported = false;  ///< a bad link was reported
    bool anyNaN = false;    ///< a NaN may be any NaN: which of two operands survives an addition is open
    std::array<float, 4> color{};
};

inline float narrow(double v) {
    return static_cast<float>(v);
}
inline float plus(float a, float b) {
    return narrow(double(a) + double(b));
}
inline float minus(float a, float b) {
    return narrow(double(a) - double(b));
}
inline float times(float a, float b) {
    return narrow(double(a) * double(b));
}
inline float over(float a, float b) {
    return narrow(double(a) / double(b));
}

inline float fraction(float low, float high, float value) {
    float t = over(minus(value, low), minus(high, low));
    t = t > 0.0f ? t : 0.0f;
    return t < 1.0f ? t : 1.0f;
}

inline std::array<float, 3> rainbow(float t) {
    const float pi = 3.1415927f;
    const auto sine = [](float x) { return narrow(std::sin(double(x))); };
    return {sine(times(minus(t, 0.5f), pi)), sine(times(t, pi)), sine(times(plus(t, 0.5f), pi))};
}

inline std::array<float, 3> hueCycle(float t) {
    const float bounds[] = {0.0f, 0.16666667f, 0.33333334f, 0.5f, 0.6666667f, 0.8333333f, 2.0f};
    int sixth = 0;
    while (t >= bounds[sixth + 1]) {
        ++sixth;
    }
    const float up = times(minus(t, bounds[sixth]), 6.0f);
    const float down = minus(1.0f, up);
    const std::array<float, 3> colors[] = {{1, up, 0},   {down, 1, 0}, {0, 1, up},
                                           {0, down, 1}, {up, 0, 1},   {1, 0, down}};
    return colors[sixth];
}

inline std::array<float, 3> blackGreenBlueRed(float t) {
    const float bounds[] = {0.0f, 0.33333334f, 0.6666667f};
    const int third = t < bounds[1] ? 0 : t < bounds[2] ? 1 : 2;
    const float up = times(minus(t, bounds[third]), 3.0f);
    const float down = minus(1.0f, up);
    const std::array<float, 3> colors[] = {{0, up, 0}, {0, down, up}, {up, 0, down}};
    return colors[third];
}

inline float clamped(float v) {
    if (v < 0.0f) {
        return 0.0f;
    }
    return v > 1.0f ? 1.0f : v;
}

inline Result analytic(const Section& section, const std::array<float, 3>& rgb) {
    const auto& alpha = section.points[3];
    return {true,
            true,
            false,
            false,
            {clamped(rgb[0]), clamped(rgb[1]), clamped(rgb[2]), alpha.empty() ? 1.0f : clamped(alpha[0])}};
}

inline Result gradient(const Section& section, float t) {
    Result result{true, true, false, true, {}};
    for (std::size_t c = 0; c < 4; ++c) {
        const auto& points = section.points[c];
        const float start = points.empty() ? 0.0f : points.front();
        const float end = points.empty() ? 0.0f : points.back();
        result.color[c] = plus(times(minus(1.0f, t), start), times(t, end));
    }
    return result;
}

inline Result colorOf(const Types& types, const Section& section, float low, float high, float value,
                      const Section* previous, const Section* next) {
    if (low >= high) {
        return {};
    }
    const float t = fraction(low, high, value);
    if (section.type == types.constant) {
        Result result{true, true, false, false, {}};
        for (std::size_t c = 0; c < 4; ++c) {
            result.color[c] = section.points[c].empty() ? 0.0f : section.points[c][0];
        }
        return result;
    }
    if (section.type == types.gradient) {
        return gradient(section, t);
    }
    if (section.type == types.rainbow || section.type == types.invertedRainbow) {
        return analytic(section, rainbow(section.type == types.rainbow ? t : minus(1.0f, t)));
    }
    if (section.type == types.hueCycle) {
        return analytic(section, hueCycle(t));
    }
    if (section.type == types.blackGreenBlueRed) {
        return analytic(section, blackGreenBlueRed(t));
    }
    if (section.type == types.proceed && previous && previous->kind == Kind::Section) {
        return colorOf(types, *previous, 0, 1, 1, nullptr, nullptr);
    }
    if (section.type == types.proceed && next && next->kind == Kind::Section) {
        return colorOf(types, *next, 0, 1, 0, nullptr, nullptr);
    }
    return {false, true, false, false, {}};
}

/** Where a bisection ends that halves the list from its middle on; `isBefore` tells of each item whether the place lies
 * behind it. In an ascending list that is the number of such items. */
template <class IsBefore>
std::size_t bisected(const std::vector<float>& positions, IsBefore isBefore) {
    std::size_t from = 0;
    for (std::size_t count = positions.size(); count > 0;) {
        const std::size_t half = count / 2;
        if (isBefore(positions[from + half])) {
            from += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return from;
}

/** The section of a value: by counting in an ascending list, by bisection in any other. */
inline std::size_t sectionOf(const Table& table, float value) {
    const std::vector<float>& positions = table.positions;
    std::size_t less = 0;
    std::size_t lessOrEqual = 0;
    if (table.ascending) {
        for (const float p : positions) {
            less += p < value ? 1 : 0;
            lessOrEqual += p <= value ? 1 : 0;
        }
    } else {
        less = bisected(positions, [&](float p) { return p < value; });
        lessOrEqual = bisected(positions, [&](float p) { return !(value < p); });
    }
    const double distance = std::abs(double(value) - double(positions[0]));
    return less == 0 && distance <= std::abs(double(value)) * 1.1920929e-07 ? lessOrEqual : less;
}

/** The colour of one value; `linkFirst` as where many are coloured: a bad link then matters outside a finite range too.
 */
inline Result colorIn(const Types& types, const Table& table, float value, bool linkFirst) {
    const std::size_t last = table.positions.size();
    if (last < 2 || table.sections.size() != last + 1) {
        return {};
    }
    const std::size_t k = sectionOf(table, value);
    const bool outside = (table.below == 1 && k == 0) || (table.above == 1 && k == last);
    if (table.sections[k].kind != Kind::Section && (linkFirst || !outside)) {
        return {false, false, true, false, {}};
    }
    if (outside) {
        return {true, true, false, false, {0, 0, 0, 1}};
    }
    const float low = k > 0 ? table.positions[k - 1] : -FLT_MAX;
    const float high = k < last ? table.positions[k] : FLT_MAX;
    return colorOf(types, table.sections[k], low, high, value, k > 0 ? &table.sections[k - 1] : nullptr,
                   k < last ? &table.sections[k + 1] : nullptr);
}

}  // namespace plain
