#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/** Numbers as text, independent of any locale. */
namespace lys::cli {

/** The float nearest to a decimal number; "nan", "inf" and "-inf" are numbers too, blanks around it are skipped.
 * Numbers below the smallest denormal become a zero of their sign. Empty for a text that is no number, and for finite
 * numbers beyond the largest float. */
std::optional<float> parseFloat(std::string_view text);

/** The double nearest to a decimal number. Empty for other texts and outside the range of a double. */
std::optional<double> parseDouble(std::string_view text);

/** A count: decimal digits only. Empty for other texts and beyond 63 bits. */
std::optional<std::int64_t> parseCount(std::string_view text);

/** The shortest text that reads back to the same bits, as of −0; every NaN is "nan". */
std::string formatNumber(float value);
std::string formatNumber(double value);

/** The items between the separators; one item for a text without any. */
std::vector<std::string_view> splitText(std::string_view text, char separator);

}  // namespace lys::cli
