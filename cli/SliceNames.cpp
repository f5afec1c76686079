#include "SliceNames.h"

#include "Failure.h"

namespace lys::cli {

namespace {

constexpr std::size_t LARGEST_WIDTH = 20;

}  // namespace

SliceNames::SliceNames(const std::string& pattern) {
    if (!read(pattern)) {
        throwUnusable(pattern +
                      ": --all needs exactly one marker for the slice's number in the name, as in out-%04d.png");
    }
}

bool SliceNames::read(const std::string& pattern) {
    int markers = 0;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        std::string& part = markers == 0 ? mBefore : mAfter;
        if (pattern[i] != '%') {
            part += pattern[i];
            continue;
        }
        if (++i < pattern.size() && pattern[i] == '%') {
            part += '%';
            continue;
        }
        if (i < pattern.size() && pattern[i] == '0') {
            mFill = '0';
            ++i;
        }
        for (; i < pattern.size() && pattern[i] >= '0' && pattern[i] <= '9' && mWidth <= LARGEST_WIDTH; ++i) {
            mWidth = mWidth * 10 + static_cast<std::size_t>(pattern[i] - '0');
        }
        if (i >= pattern.size() || pattern[i] != 'd') {
            return false;
        }
        ++markers;
    }
    return markers == 1 && mWidth <= LARGEST_WIDTH;
}

std::string SliceNames::name(std::int64_t slice) const {
    const std::string digits = std::to_string(slice);
    return mBefore + std::string(digits.size() < mWidth ? mWidth - digits.size() : 0, mFill) + digits + mAfter;
}

bool SliceNames::isPattern(const std::string& text) {
    try {
        const SliceNames names(text);
        return true;
    } catch (const Failure&) {
        return false;
    }
}

}  // namespace lys::cli
