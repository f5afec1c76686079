#include <colortable/model/eval/SectionRule.h>

#include <cmath>

namespace lys::eval {

namespace {

constexpr float pi = 3.1415927f;
constexpr float oneThird = 0.33333334f;
constexpr float twoThirds = 0.6666667f;
constexpr float oneSixth = 0.16666667f;
constexpr float fiveSixths = 0.8333333f;

void setColor(float* out, float red, float green, float blue, float alpha) {
    out[0] = red;
    out[1] = green;
    out[2] = blue;
    out[alphaChannel] = alpha;
}

float sineOf(float argument) {
    return static_cast<float>(std::sin(static_cast<double>(argument)));
}

/// An analytic rule is opaque unless it has alpha points; only the other rules read an empty list as 0.
float analyticAlpha(const SectionData& section) {
    return section.has[alphaChannel] ? section.first[alphaChannel] : 1.0f;
}

void constantColor(const SectionData& section, float* out) {
    for (int c = 0; c < channelCount; ++c) {
        if (section.has[c])
            out[c] = section.first[c];
    }
}

void gradientColor(const SectionData& section, float t, float* out) {
    for (int c = 0; c < channelCount; ++c) {
        const float start = section.has[c] ? section.first[c] : 0.0f;
        const float end = section.has[c] ? section.last[c] : 0.0f;
        out[c] = (1.0f - t) * start + t * end;
    }
}

void rainbowColor(float t, float alpha, float* out) {
    setColor(out, sineOf((t - 0.5f) * pi), sineOf(t * pi), sineOf((t + 0.5f) * pi), alpha);
}

void blackGreenBlueRedColor(float t, float alpha, float* out) {
    if (t < oneThird) {
        setColor(out, 0.0f, 3.0f * t, 0.0f, alpha);
    } else if (t < twoThirds) {
        const float s = (t - oneThird) * 3.0f;
        setColor(out, 0.0f, 1.0f - s, s, alpha);
    } else {
        const float s = (t - twoThirds) * 3.0f;
        setColor(out, s, 0.0f, 1.0f - s, alpha);
    }
}

void hueCycleColor(float t, float alpha, float* out) {
    if (t < oneSixth) {
        setColor(out, 1.0f, 6.0f * t, 0.0f, alpha);
    } else if (t < oneThird) {
        const float s = (t - oneSixth) * 6.0f;
        setColor(out, 1.0f - s, 1.0f, 0.0f, alpha);
    } else if (t < 0.5f) {
        const float s = (t - oneThird) * 6.0f;
        setColor(out, 0.0f, 1.0f, s, alpha);
    } else if (t < twoThirds) {
        const float s = (t - 0.5f) * 6.0f;
        setColor(out, 0.0f, 1.0f - s, 1.0f, alpha);
    } else if (t < fiveSixths) {
        const float s = (t - twoThirds) * 6.0f;
        setColor(out, s, 0.0f, 1.0f, alpha);
    } else {
        const float s = (t - fiveSixths) * 6.0f;
        setColor(out, 1.0f, 0.0f, 1.0f - s, alpha);
    }
}

bool continuedColor(const SectionData* previous, const SectionData* next, float* out, bool clampedColors) {
    if (previous && previous->isSection)
        return sectionColor(*previous, 0.0f, 1.0f, 1.0f, out, nullptr, nullptr, clampedColors);
    if (next && next->isSection)
        return sectionColor(*next, 0.0f, 1.0f, 0.0f, out, nullptr, nullptr, clampedColors);
    return false;
}

void clampColor(float* out, bool clampedColors) {
    float color[channelCount];
    for (int c = 0; c < channelCount; ++c)
        color[c] = clampedChannel(out[c]);
    for (int c = 0; c < channelCount; ++c)
        out[c] = clampedColors ? clampedChannel(color[c]) : color[c];
}

}  // namespace

float intervalFraction(float low, float high, float value) {
    float t = (value - low) / (high - low);
    if (!(t > 0.0f))
        t = 0.0f;
    if (!(t < 1.0f))
        t = 1.0f;
    return t;
}

float clampedChannel(float channel) {
    return channel < 0.0f ? 0.0f : channel > 1.0f ? 1.0f : channel;
}

bool sectionColor(const SectionData& section, float low, float high, float value, float* out,
                  const SectionData* previous, const SectionData* next, bool clampedColors) {
    if (!section.isSection || low >= high)
        return false;
    setColor(out, 0.0f, 0.0f, 0.0f, 0.0f);
    const float t = intervalFraction(low, high, value);
    switch (section.rule) {
        case Rule::Constant:
            constantColor(section, out);
            return true;
        case Rule::Gradient:
            gradientColor(section, t, out);
            return true;
        case Rule::Rainbow:
            rainbowColor(t, analyticAlpha(section), out);
            break;
        case Rule::InvertedRainbow:
            rainbowColor(1.0f - t, analyticAlpha(section), out);
            break;
        case Rule::Continue:
            return continuedColor(previous, next, out, clampedColors);
        case Rule::BlackGreenBlueRed:
            blackGreenBlueRedColor(t, analyticAlpha(section), out);
            break;
        case Rule::HueCycle:
            hueCycleColor(t, analyticAlpha(section), out);
            break;
        default:
            return false;
    }
    clampColor(out, clampedColors);
    return true;
}

}  // namespace lys::eval
