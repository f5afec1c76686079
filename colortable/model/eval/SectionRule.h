#pragma once

#include <cstdint>

namespace lys::eval {

/// The colouring rule of a section. None stands for every type identifier that has no rule.
enum class Rule : uint8_t {
    Constant,
    Gradient,
    Rainbow,
    InvertedRainbow,
    Continue,
    BlackGreenBlueRed,
    HueCycle,
    None,
};

/// The channels in the order in which colours lie in memory: red, green, blue, alpha.
inline constexpr int channelCount = 4;
inline constexpr int alphaChannel = 3;

/// What evaluation reads of one section. Of a channel's point list only the value of its first and of its last point
/// count; where the list is empty, has is false and both values are 0.
struct SectionData {
    Rule rule = Rule::None;
    bool isSection = true;  ///< false: the table's link leads to no section
    bool has[channelCount] = {false, false, false, false};
    float first[channelCount] = {0.0f, 0.0f, 0.0f, 0.0f};
    float last[channelCount] = {0.0f, 0.0f, 0.0f, 0.0f};
};

/// The place of value in the interval, as a fraction: 0 at or below low and for NaN, 1 at or above high. Plain
/// single-precision steps, so an interval whose width overflows gives 0 everywhere.
float intervalFraction(float low, float high, float value);

/// One channel of a colour held to [0, 1]; NaN stays NaN and -0 stays -0.
float clampedChannel(float channel);

/// Colours value in the interval (low, high) of section and says whether a colour was written.
///
/// This is the definition that every faster path has to equal bit for bit: single-precision steps in the order given
/// here, no fused operations; a sine's argument is formed in single precision, the sine taken in double precision, the
/// result stored as float.
///
/// Fails with out untouched when the section is none or low >= high, else with out = (0, 0, 0, 0) when the rule is None
/// or Continue has no neighbour to continue. previous and next are the neighbours or null; a neighbour that is no
/// section counts as absent. clampedColors: the colour type is in clamped mode, so analytic colours are clamped once
/// more.
bool sectionColor(const SectionData& section, float low, float high, float value, float* out,
                  const SectionData* previous, const SectionData* next, bool clampedColors = false);

}  // namespace lys::eval
