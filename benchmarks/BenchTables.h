#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <colortable/model/eval/ScalarTable.h>

/// A table with its own memory.
struct BenchTable {
    std::string name;
    std::vector<float> positions;
    std::vector<lys::eval::SectionData> sections;

    lys::eval::TableView view() const {
        return {positions.data(), static_cast<int64_t>(positions.size()), sections.data(), false, false, false};
    }
};

/// How boundaries lie in [-1, 1]: evenly, or crowded towards one end by the fourth power.
enum class Spacing { Uniform, Skewed };

/// Constant ends around one section of the rule from -1 to 1.
BenchTable ruleTable(const std::string& name, lys::eval::Rule rule);

/// So many sections in all, every inner one of the rule; Rule::None: all rules in turn.
BenchTable manySections(const std::string& name, int64_t sections, lys::eval::Rule rule,
                        Spacing spacing = Spacing::Uniform);

/// The table with an upper end that fails.
BenchTable withFailingEnd(BenchTable table);

enum class Input { Random, Ramp, Volume };

/// count values from -1 to 1: independent, ascending, or in long runs with a little noise as in a volume's rows.
std::vector<float> inputValues(Input input, int64_t count);
