#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lyranalysis {

/** A value of a report, as the text that JSON and CSV share, or as words. */
struct ReportValue {
    explicit ReportValue(double number);
    explicit ReportValue(float number);
    explicit ReportValue(std::uint64_t number) : text(std::to_string(number)) {}
    explicit ReportValue(std::int64_t number) : text(std::to_string(number)) {}
    explicit ReportValue(std::string words) : text(std::move(words)), isWords(true) {}

    std::string text;  ///< empty for a number that is not finite
    bool isWords = false;
};

/** A report before it is written: named values, and rows of values under column names. */
struct ReportText {
    std::vector<std::pair<std::string, ReportValue>> head;
    std::string rowsName;
    std::vector<std::string> columns;
    std::vector<std::vector<ReportValue>> rows;

    std::string csv() const;
    std::string json() const;
};

}  // namespace lyranalysis
