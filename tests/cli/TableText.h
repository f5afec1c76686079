#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include <colortable/eval/TestTables.h>

/// Object files of tables, written by the test itself.
namespace table_text {

inline std::string number(float value) {
    if (std::isnan(value))
        return "\"nan\"";
    if (std::isinf(value))
        return value < 0 ? "\"-inf\"" : "\"inf\"";
    if (value == 0 && std::signbit(value))
        return "-0.0";
    char buffer[64];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

inline std::string section(const std::string& type, const std::vector<std::vector<float>>& channels) {
    static const char* names[] = {"Red", "Green", "Blue", "Alpha"};
    std::string text = R"({ "class": "LyrColorLookupTable::Section", "properties": { "Type": ")" + type + '"';
    for (std::size_t c = 0; c < channels.size(); ++c) {
        text += std::string(", \"PointList") + names[c] + "\": [";
        for (std::size_t i = 0; i < channels[c].size(); ++i)
            text += (i == 0 ? "[" : ", [") + number(float(i)) + ", " + number(channels[c][i]) + "]";
        text += "]";
    }
    return text + " } }";
}

inline std::string table(const std::vector<float>& positions, const std::vector<std::string>& sections,
                         const std::string& more = "") {
    std::string text = R"({ "format": "lyr-object", "version": 1, "class": "LyrColorLookupTable", "properties": {)";
    text += "\n\"PositionList\": [";
    for (std::size_t i = 0; i < positions.size(); ++i)
        text += (i == 0 ? "" : ", ") + number(positions[i]);
    text += "],\n\"SectionList\": [";
    for (std::size_t i = 0; i < sections.size(); ++i)
        text += (i == 0 ? "" : ",\n") + sections[i];
    return text + "]" + more + " } }\n";
}

inline std::string constant(float r, float g, float b, float a) {
    return section("Constant", {{r}, {g}, {b}, {a}});
}

inline const char* typeName(plain::Rule rule) {
    switch (rule) {
        case plain::Rule::Constant:
            return "Constant";
        case plain::Rule::Gradient:
            return "Gradient";
        case plain::Rule::Rainbow:
            return "Rainbow";
        case plain::Rule::InvertedRainbow:
            return "InvertedRainbow";
        case plain::Rule::BlackGreenBlueRed:
            return "BlackGreenBlueRed";
        case plain::Rule::HueCycle:
            return "HueCycle";
        case plain::Rule::Continue:
            return "Continue";
        default:
            return "Custom";
    }
}

/// A model table as an object file. Lists have one point, two, or more of which the inner ones do not count.
inline std::string table(const plain::Table& model, plain::Random& random) {
    std::vector<std::string> sections;
    for (const plain::SectionData& data : model.sections) {
        std::vector<std::vector<float>> channels(4);
        for (std::size_t c = 0; c < 4; ++c) {
            if (!data.has[c])
                continue;
            channels[c].push_back(data.first[c]);
            const bool single = plain::bitsOf(data.first[c]) == plain::bitsOf(data.last[c]) && random.oneIn(2);
            for (std::uint32_t i = single || !random.oneIn(5) ? 0 : random.below(40); i > 0; --i)
                channels[c].push_back(random.pointValue());
            if (!single)
                channels[c].push_back(data.last[c]);
        }
        sections.push_back(section(typeName(data.rule), channels));
    }
    return table(model.positions, sections,
                 std::string(", \"FiniteMode\": [") + (model.below ? "1, " : "0, ") + (model.above ? "1]" : "0]"));
}

}  // namespace table_text
