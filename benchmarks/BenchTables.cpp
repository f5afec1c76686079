#include "BenchTables.h"

#include <cmath>
#include <random>

using lys::eval::Rule;
using lys::eval::SectionData;

namespace {

SectionData section(Rule rule, int64_t seed) {
    SectionData s;
    s.rule = rule;
    if (rule != Rule::Constant && rule != Rule::Gradient)
        return s;
    for (int c = 0; c < 4; ++c) {
        s.has[c] = true;
        s.first[c] = c == 3 ? 1.0f : static_cast<float>((seed * 37 + c * 11) % 101) / 101.0f;
        s.last[c] =
            rule == Rule::Constant || c == 3 ? s.first[c] : static_cast<float>((seed * 53 + c * 29) % 97) / 97.0f;
    }
    return s;
}

}  // namespace

BenchTable ruleTable(const std::string& name, Rule rule) {
    return {name, {-1.0f, 1.0f}, {section(Rule::Constant, 1), section(rule, 2), section(Rule::Constant, 3)}};
}

BenchTable manySections(const std::string& name, int64_t sections, Rule rule, Spacing spacing) {
    static const Rule all[] = {Rule::Constant,        Rule::Gradient, Rule::Rainbow,          Rule::HueCycle,
                               Rule::InvertedRainbow, Rule::Gradient, Rule::BlackGreenBlueRed};
    BenchTable table;
    table.name = name;
    const int64_t boundaries = sections - 1;
    for (int64_t k = 0; k < boundaries; ++k) {
        const double f = static_cast<double>(k) / static_cast<double>(boundaries - 1);
        table.positions.push_back(static_cast<float>(-1.0 + 2.0 * (spacing == Spacing::Uniform ? f : f * f * f * f)));
    }
    for (int64_t k = 0; k < sections; ++k) {
        const bool end = k == 0 || k == sections - 1;
        table.sections.push_back(section(end ? Rule::Constant : rule == Rule::None ? all[k % 7] : rule, k));
    }
    return table;
}

BenchTable withFailingEnd(BenchTable table) {
    table.sections.back().rule = Rule::None;
    return table;
}

std::vector<float> inputValues(Input input, int64_t count) {
    std::mt19937 engine(7);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> values(static_cast<size_t>(count));
    float level = 0.0f;
    for (int64_t i = 0; i < count; ++i) {
        float& v = values[static_cast<size_t>(i)];
        switch (input) {
            case Input::Random:
                v = uniform(engine);
                break;
            case Input::Ramp:
                v = -1.0f + 2.0f * static_cast<float>(static_cast<double>(i) / static_cast<double>(count));
                break;
            case Input::Volume:
                // Air outside, material inside, a new level about every 60 values
                if (engine() % 60 == 0)
                    level = engine() % 2 == 0 ? -0.95f : 0.2f + 0.3f * uniform(engine);
                v = level + 0.02f * uniform(engine);
                break;
        }
    }
    return values;
}
