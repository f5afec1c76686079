#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrTextSamples_p.h>

namespace lyrvolume {
namespace {

constexpr std::size_t kChunk = std::size_t{1} << 16U;
constexpr std::size_t kLongestNumber = 512;

bool isBlank(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ',';
}

/** Gathers bytes and passes them on in whole groups. */
class GroupedBytes {
public:
    GroupedBytes(std::size_t group, const ByteSink& sink)
        : full_(std::max(group, kChunk / group * group)), sink_(sink) {
        bytes_.reserve(full_);
    }

    void add(std::span<const unsigned char> more) {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        if (bytes_.size() >= full_) {
            flush();
        }
    }

    void flush() {
        sink_(bytes_);
        bytes_.clear();
    }

private:
    std::size_t full_;
    const ByteSink& sink_;
    std::vector<unsigned char> bytes_;
};

/** Characters of a file one by one. `place` is that of the next one. */
class Characters {
public:
    Characters(const InputFile& file, std::uint64_t place) : file_(file), place_(place), chunk_(kChunk) {}

    bool next(unsigned char& c) {
        if (at_ == count_) {
            count_ = file_.readAt(place_, chunk_);
            at_ = 0;
            if (count_ == 0) {
                return false;
            }
        }
        c = chunk_[at_++];
        ++place_;
        return true;
    }

    std::uint64_t place() const { return place_; }
    double consumed() const { return static_cast<double>(place_) / static_cast<double>(file_.length()); }

private:
    const InputFile& file_;
    std::uint64_t place_;
    std::vector<unsigned char> chunk_;
    std::size_t at_ = 0;
    std::size_t count_ = 0;
};

/** The next run of characters that are no blanks; empty at the end of the file. */
std::string_view nextWord(Characters& characters, std::array<char, kLongestNumber>& storage) {
    std::size_t length = 0;
    unsigned char c = 0;
    while (characters.next(c)) {
        if (!isBlank(c)) {
            storage[length++] = static_cast<char>(c);
            if (length == storage.size()) {
                break;
            }
        } else if (length > 0) {
            break;
        }
    }
    return {storage.data(), length};
}

bool parseNumber(std::string_view word, double& value) {
    if (word.size() > 1 && word.front() == '+') {
        word.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    return error == std::errc() && end == word.data() + word.size();
}

int hexDigit(unsigned char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const int letter = (c | 0x20) - 'a';
    return letter >= 0 && letter < 6 ? letter + 10 : -1;
}

bool tooFew(const TextPart& part, std::uint64_t there, std::uint64_t needed, const char* what, ReadContext& context) {
    return context.fail(part.path, "the header claims " + std::to_string(needed) + " " + what + ", only " +
                                       std::to_string(there) +
                                       " are there; the file is cut off or its header is wrong");
}

}  // namespace

bool readDecimalSamples(const TextPart& part, std::uint64_t count, std::uint64_t group, const ByteSink& sink,
                        ReadContext& context) {
    InputFile file;
    if (!file.open(part.path, context)) {
        return false;
    }
    Characters characters(file, part.place);
    GroupedBytes bytes(static_cast<std::size_t>(group) * sizeof(double), sink);
    std::array<char, kLongestNumber> storage{};
    std::array<unsigned char, sizeof(double)> encoded{};
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::string_view word = nextWord(characters, storage);
        if (word.empty()) {
            return tooFew(part, i, count, "numbers", context);
        }
        double value = 0.0;
        if (!parseNumber(word, value)) {
            return context.fail(part.path, "before byte " + std::to_string(characters.place()) + ": \"" +
                                               std::string(word.substr(0, 32)) +
                                               "\" is no number; the data are damaged");
        }
        std::memcpy(encoded.data(), &value, sizeof(value));
        bytes.add(encoded);
        if (i % kChunk == 0 && !context.advance(characters.consumed())) {
            return false;
        }
    }
    bytes.flush();
    if (!nextWord(characters, storage).empty()) {
        context.warn(part.path, "numbers behind the data were ignored");
    }
    return true;
}

bool readHexBytes(const TextPart& part, std::uint64_t count, std::uint64_t group, const ByteSink& sink,
                  ReadContext& context) {
    InputFile file;
    if (!file.open(part.path, context)) {
        return false;
    }
    Characters characters(file, part.place);
    GroupedBytes bytes(static_cast<std::size_t>(group), sink);
    unsigned char c = 0;
    int high = -1;
    for (std::uint64_t done = 0; done < count;) {
        if (!characters.next(c)) {
            return tooFew(part, done, count, "bytes of hexadecimal data", context);
        }
        if (isBlank(c)) {
            continue;
        }
        const int digit = hexDigit(c);
        if (digit < 0) {
            return context.fail(part.path, "at byte " + std::to_string(characters.place() - 1) +
                                               ": no hexadecimal digit; the data are damaged");
        }
        if (high < 0) {
            high = digit;
            continue;
        }
        const auto byte = static_cast<unsigned char>(high * 16 + digit);
        bytes.add({&byte, 1});
        high = -1;
        if (++done % kChunk == 0 && !context.advance(characters.consumed())) {
            return false;
        }
    }
    bytes.flush();
    return true;
}

}  // namespace lyrvolume
