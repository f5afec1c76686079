#include "MapValues.h"

#include "Failure.h"
#include "Messages.h"
#include "Numbers.h"
#include "Output.h"
#include "RawInput.h"

#include <algorithm>

namespace lys::cli {

std::vector<float> parseValues(const std::string& text) {
    std::vector<float> values;
    for (const std::string_view item : splitText(text, ',')) {
        const std::optional<float> value = parseFloat(item);
        if (!value) {
            throwUnusable("--at: '" + std::string(item) +
                          "' is no number within a float's range; give numbers, nan, inf or -inf, separated by commas");
        }
        values.push_back(*value);
    }
    return values;
}

void mapValues(BlockColors& colors, std::span<const float> values) {
    std::string text;
    while (!values.empty()) {
        const std::span<const float> block = values.first(std::min(values.size(), BlockColors::BLOCK));
        for (const LyrRGBA<float>& color : colors.next(block)) {
            text += formatNumber(color.red) + ' ' + formatNumber(color.green) + ' ' + formatNumber(color.blue) + ' ' +
                    formatNumber(color.alpha) + '\n';
        }
        values = values.subspan(block.size());
    }
    printText(text);
}

void mapRaw(BlockColors& colors, const std::string& input, const std::string& output) {
    RawInput values(input);
    Output result(output);
    Progress progress("colouring");
    std::vector<float> block(BlockColors::BLOCK);
    std::int64_t done = 0;
    for (std::size_t count = values.read(block); count > 0; count = values.read(block)) {
        result.write(std::as_bytes(colors.next(std::span(block).first(count))));
        done += static_cast<std::int64_t>(count);
        progress.show(static_cast<double>(done), static_cast<double>(values.count().value_or(0)));
    }
    result.commit();
}

}  // namespace lys::cli
