#include <lyr_core/LyrString.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

struct Marker {
    std::size_t begin = 0;
    std::size_t length = 0;
    int number = 0;
};

int digitAt(std::string_view text, std::size_t index) {
    return index < text.size() && text[index] >= '0' && text[index] <= '9' ? text[index] - '0' : -1;
}

// All markers %1 to %99 from left to right. "%0" begins none, so that "%05" stays as it is.
std::vector<Marker> findMarkers(std::string_view text) {
    std::vector<Marker> markers;
    for (std::size_t i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1)) {
        const int first = digitAt(text, i + 1);
        if (first < 1) {
            continue;
        }
        const int second = digitAt(text, i + 2);
        markers.push_back(second < 0 ? Marker{i, 2, first} : Marker{i, 3, 10 * first + second});
    }
    return markers;
}

// The numbers that occur, each once, ascending.
std::vector<int> numbersOf(const std::vector<Marker>& markers) {
    std::vector<int> numbers;
    numbers.reserve(markers.size());
    for (const Marker& marker : markers) {
        numbers.push_back(marker.number);
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

}  // namespace

LyrString LyrString::arg(const LyrString& text) const {
    return arg({text});
}

LyrString LyrString::arg(std::initializer_list<LyrString> texts) const {
    const std::vector<Marker> markers = findMarkers(mText);
    const std::vector<int> numbers = numbersOf(markers);
    std::string result;
    std::size_t done = 0;
    for (const Marker& marker : markers) {
        const auto rank = std::lower_bound(numbers.begin(), numbers.end(), marker.number) - numbers.begin();
        if (static_cast<std::size_t>(rank) >= texts.size()) {
            continue;
        }
        result.append(mText, done, marker.begin - done);
        result += texts.begin()[rank].mText;
        done = marker.begin + marker.length;
    }
    if (done == 0) {
        return *this;
    }
    result.append(mText, done);
    return LyrString(std::move(result));
}

LyrString LyrString::fromNumber(double value, char format, int precision) {
    if (std::isnan(value)) {
        return LyrString("nan");
    }
    // The longest text is the largest double in fixed format: sign, 309 digits, point and decimals.
    constexpr int maximumPrecision = 100;
    std::array<char, 512> text;
    const std::chars_format kind = format == 'f'   ? std::chars_format::fixed
                                   : format == 'e' ? std::chars_format::scientific
                                                   : std::chars_format::general;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, kind, std::clamp(precision, 0, maximumPrecision));
    return LyrString(std::string_view(text.data(), end.ptr));
}
