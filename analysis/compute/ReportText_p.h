#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
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

/** A report before it is written: named values, and rows of values under column names. A row is made when it is
 * written: all the rows of a million defects would take gigabytes. */
struct ReportText {
    using Row = std::vector<ReportValue>;

    std::vector<std::pair<std::string, ReportValue>> head;
    std::string rowsName;
    std::vector<std::string> columns;
    std::size_t rowCount = 0;
    std::function<void(std::size_t index, Row& row)> makeRow;  ///< appends a value for each column to an empty row

    std::string csv() const;
    std::string json() const;
};

}  // namespace lyranalysis
