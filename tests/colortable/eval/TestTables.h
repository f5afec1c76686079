#pragma once

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

#include "PlainModel.h"

namespace plain {

inline SectionData constantSection(float r, float g, float b, float a = 1.0f) {
    SectionData s;
    s.rule = Rule::Constant;
    const float v[4] = {r, g, b, a};
    for (int c = 0; c < 4; ++c) {
        s.has[c] = true;
        s.first[c] = s.last[c] = v[c];
    }
    return s;
}

inline SectionData analyticSection(Rule rule) {
    SectionData s;
    s.rule = rule;
    return s;
}

/// The table that a new object has: constant ends around a rainbow from -1 to 1.
inline Table rainbowTable() {
    Table t;
    t.positions = {-1.0f, 1.0f};
    t.sections = {constantSection(0.6f, 0, 1), analyticSection(Rule::Rainbow), constantSection(1, 0, 0.6f)};
    return t;
}

struct Random {
    std::mt19937 engine;
    bool withNan = true;  ///< among the points of sections
    explicit Random(uint32_t seed) : engine(seed) {}

    uint32_t below(uint32_t n) { return uint32_t(std::uniform_int_distribution<uint64_t>(0, n - 1)(engine)); }
    bool oneIn(uint32_t n) { return below(n) == 0; }
    float in(float a, float b) { return a + (b - a) * float(below(1u << 24)) / float(1u << 24); }

    /// Any number that is not NaN.
    float anyNumber() {
        float v;
        do
            v = floatOf(uint32_t(engine()));
        while (std::isnan(v));
        return v;
    }

    float pointValue() {
        static const float edges[] = {0.0f,
                                      -0.0f,
                                      1.0f,
                                      -1.0f,
                                      FLT_MAX,
                                      1e-42f,
                                      std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity(),
                                      std::nanf("")};
        return oneIn(6) ? edges[below(withNan ? 9 : 8)] : oneIn(8) ? anyNumber() : in(-0.2f, 1.2f);
    }

    SectionData section(bool mayFail) {
        static const Rule rules[] = {Rule::Constant,          Rule::Gradient, Rule::Rainbow,  Rule::InvertedRainbow,
                                     Rule::BlackGreenBlueRed, Rule::HueCycle, Rule::Continue, Rule::None};
        SectionData s;
        s.rule = rules[below(mayFail && oneIn(20) ? 8 : mayFail ? 7 : 6)];
        s.isSection = !(mayFail && oneIn(60));
        for (int c = 0; c < 4; ++c) {
            if (oneIn(4))
                continue;
            s.has[c] = true;
            s.first[c] = pointValue();
            s.last[c] = oneIn(4) ? s.first[c] : pointValue();
        }
        return s;
    }

    std::vector<float> boundaries(size_t count) {
        std::vector<float> p(count);
        const uint32_t kind = below(6);
        for (size_t i = 0; i < count; ++i) {
            switch (kind) {
                case 0:
                    p[i] = float(i) * 0.25f - 2.0f;
                    break;
                case 1:
                    p[i] = anyNumber();
                    break;
                case 2:
                    p[i] = in(-1, 1);
                    break;
                case 3:
                    p[i] = std::ldexp(1.0f, int(below(200)) - 100) * (oneIn(2) ? -1.0f : 1.0f);
                    break;
                case 4:
                    p[i] = floatOf(0x3F800000u + below(uint32_t(count) * 2));
                    break;
                default:
                    p[i] = floatOf(below(4000) | (oneIn(2) ? 0x80000000u : 0u));
                    break;
            }
        }
        if (oneIn(4))
            p[below(uint32_t(count))] = p[0];
        if (oneIn(8))
            p[0] = -FLT_MAX;
        if (oneIn(8))
            p[count - 1] = FLT_MAX;
        if (oneIn(16))
            p[below(uint32_t(count))] = std::numeric_limits<float>::infinity();
        if (oneIn(16))
            p[below(uint32_t(count))] = -std::numeric_limits<float>::infinity();
        std::sort(p.begin(), p.end());
        return p;
    }

    Table table(size_t boundaryCount, bool mayFail) {
        Table t;
        t.positions = boundaries(boundaryCount);
        for (size_t i = 0; i <= boundaryCount; ++i)
            t.sections.push_back(section(mayFail));
        t.below = oneIn(4);
        t.above = oneIn(4);
        return t;
    }
};

/// Values worth asking any table for: each boundary and its neighbours, the special numbers, and numbers between.
inline std::vector<float> interestingValues(const Table& table, Random* random, size_t more) {
    const float inf = std::numeric_limits<float>::infinity();
    std::vector<float> v = {0.0f,
                            -0.0f,
                            FLT_MAX,
                            -FLT_MAX,
                            inf,
                            -inf,
                            FLT_MIN,
                            -FLT_MIN,
                            FLT_TRUE_MIN,
                            -FLT_TRUE_MIN,
                            std::nanf(""),
                            -std::nanf(""),
                            floatOf(0x7FA00001u),
                            1.0f,
                            -1.0f};
    for (const float p : table.positions) {
        v.push_back(p);
        v.push_back(std::nextafter(p, inf));
        v.push_back(std::nextafter(p, -inf));
    }
    for (size_t i = 0; i < more; ++i) {
        const size_t k = random->below(uint32_t(table.positions.size() - 1));
        const float f = random->in(0, 1);
        switch (random->below(4)) {
            case 0:
                v.push_back(floatOf(uint32_t(random->engine())));
                break;
            case 1:
                v.push_back(table.positions.front() + (table.positions.back() - table.positions.front()) * f);
                break;
            default:
                v.push_back(table.positions[k] + (table.positions[k + 1] - table.positions[k]) * f);
                break;
        }
    }
    std::shuffle(v.begin(), v.end(), random->engine);
    return v;
}

/// A NaN equals any NaN here: which of two NaN goes through an addition is the compiler's choice.
inline bool sameValue(float a, float b) {
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

inline bool sameColor(const float* a, const Color& b) {
    return sameValue(a[0], b.c[0]) && sameValue(a[1], b.c[1]) && sameValue(a[2], b.c[2]) && sameValue(a[3], b.c[3]);
}

}  // namespace plain
