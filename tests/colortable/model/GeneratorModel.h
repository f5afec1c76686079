#pragma once

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include <colortable/eval/PlainModel.h>

/// The generators written down once more, for tests only: nothing here calls the code under test.
namespace plain {

/// Boundaries of a generated table, and the colours of the steps between them (none of a smooth table).
struct Generated {
    std::vector<float> positions;
    std::vector<Color> colors;
};

/// The number of boundaries for a quotient that is nearly the number of steps; none if there are too many.
inline std::optional<std::size_t> boundaryCount(float quotient) {
    const double rounded = std::floor(double(step(quotient + 0.5f)));
    if (rounded + 1.0 > 1000000.0)
        return std::nullopt;
    return rounded + 1.0 > 2.0 ? std::size_t(rounded + 1.0) : std::size_t(2);
}

inline std::vector<Color> stepColors(Rule rule, std::size_t boundaries) {
    SectionData scheme;
    scheme.rule = rule;
    std::vector<Color> colors(boundaries - 1);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        if (colors.size() >= 2)
            section(scheme, 0.0f, float(boundaries - 2), float(i), &colors[i], nullptr, nullptr);
        else
            section(scheme, 0.0f, 1.0f, 0.5f, &colors[i], nullptr, nullptr);
    }
    return colors;
}

inline std::optional<Generated> smooth(float from, float to) {
    if (!std::isfinite(from) || !std::isfinite(to) || !(from < to))
        return std::nullopt;
    return Generated{{from, to}, {}};
}

inline std::optional<Generated> stepped(float from, float to, float width, Rule rule) {
    if (!std::isfinite(from) || !std::isfinite(to) || !std::isfinite(width) || !(from < to) || !(width > 0.0f))
        return std::nullopt;
    const float range = step(to - from);
    if (!std::isfinite(range))
        return std::nullopt;
    const auto count = boundaryCount(step(range / width));
    if (!count)
        return std::nullopt;
    Generated table;
    const float delta = step(range / float(*count - 1));
    table.positions.push_back(from);
    while (table.positions.size() < *count)
        table.positions.push_back(step(table.positions.back() + delta));
    table.colors = stepColors(rule, *count);
    return table;
}

inline float narrowCosine(float angle) {
    return step(float(std::cos(double(angle))));
}

inline std::optional<Generated> sphereSegments(float from, float to, float width, Rule rule) {
    if (!std::isfinite(from) || !std::isfinite(to) || !std::isfinite(width))
        return std::nullopt;
    const float halfPi = 1.5707964f;
    from = from < 0.0f ? 0.0f : from > halfPi ? halfPi : from;
    to = to < 0.0f ? 0.0f : to > halfPi ? halfPi : to;
    if (!(from < to) || !(width > 0.0f))
        return std::nullopt;
    const float c0 = narrowCosine(from);
    const float c1 = narrowCosine(to);
    const float cs = narrowCosine(step(from + width));
    const auto count = boundaryCount(step(step(c1 - c0) / step(cs - c0)));
    if (!count)
        return std::nullopt;
    Generated table;
    const float delta = step(step(c1 - c0) / float(*count - 1));
    float c = c0;
    for (std::size_t k = 0; k < *count; ++k) {
        table.positions.push_back(float(std::acos(double(c))));
        c = step(c + delta);
    }
    table.colors = stepColors(rule, *count);
    return table;
}

}  // namespace plain
