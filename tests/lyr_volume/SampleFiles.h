#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <lyr_volume/LyrVolumeReader.h>

/** Writes small files for the tests, byte by byte and independent of the code that reads them. */
namespace samples {

/** Bytes of a file in the making. */
class Bytes {
public:
    Bytes() = default;
    explicit Bytes(std::string_view text) : data_(text.begin(), text.end()) {}

    template <typename T>
    Bytes& put(T value, bool bigEndian = false) {
        auto raw = std::bit_cast<std::array<unsigned char, sizeof(T)>>(value);
        if (bigEndian) {
            std::reverse(raw.begin(), raw.end());
        }
        data_.resize(data_.size() + sizeof(T));
        std::copy(raw.begin(), raw.end(), data_.end() - static_cast<std::ptrdiff_t>(sizeof(T)));
        return *this;
    }

    /** Overwrites what is at a place. */
    template <typename T>
    Bytes& set(std::size_t place, T value, bool bigEndian = false) {
        auto raw = std::bit_cast<std::array<unsigned char, sizeof(T)>>(value);
        if (bigEndian) {
            std::reverse(raw.begin(), raw.end());
        }
        std::copy(raw.begin(), raw.end(), data_.begin() + static_cast<std::ptrdiff_t>(place));
        return *this;
    }

    Bytes& text(std::string_view more) {
        data_.resize(data_.size() + more.size());
        std::copy(more.begin(), more.end(), data_.end() - static_cast<std::ptrdiff_t>(more.size()));
        return *this;
    }
    Bytes& append(const Bytes& more) {
        data_.insert(data_.end(), more.data_.begin(), more.data_.end());
        return *this;
    }
    Bytes& zeros(std::size_t count) {
        data_.resize(data_.size() + count);
        return *this;
    }

    Bytes first(std::size_t count) const {
        Bytes part;
        part.data_.assign(data_.begin(), data_.begin() + static_cast<std::ptrdiff_t>(count));
        return part;
    }

    std::size_t size() const { return data_.size(); }
    const unsigned char* data() const { return data_.data(); }
    unsigned char& operator[](std::size_t i) { return data_[i]; }

private:
    std::vector<unsigned char> data_;
};

Bytes gzip(const Bytes& plain);
Bytes zlib(const Bytes& plain);

/** A folder of its own for one test, gone with it. */
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path(const std::string& name = {}) const;
    /** Writes a file and returns its path. */
    std::string write(const std::string& name, const Bytes& bytes) const;

private:
    std::string path_;
};

/** Samples first, first + 1, … as T. */
template <typename T>
Bytes ramp(std::size_t count, T first = T{}, bool bigEndian = false) {
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes.put(static_cast<T>(first + static_cast<T>(i)), bigEndian);
    }
    return bytes;
}

/** The outcome of one reading. */
struct Outcome {
    bool read = false;
    std::shared_ptr<const LyrVolume> volume;
    LyrVolumeReader::Report report;

    /** All warnings in one text. */
    std::string warnings() const;
};

Outcome readVolume(const std::string& path);

/** Checks that it was read, and has this size and samples first, first + step, … */
void expectRamp(const Outcome& outcome, const LyrVolume::Size& size, double first = 0.0, double step = 1.0);

/** Checks that it was refused with a message that holds all these words, without a volume. */
void expectRefused(const Outcome& outcome, std::initializer_list<const char*> words);

/** Writes every proper beginning of `bytes` as `name` and checks that each is refused. */
void expectEveryCutRefused(const Folder& folder, const std::string& name, const Bytes& bytes, std::size_t step = 1);

/** Most main memory that this process has used so far, in bytes. */
std::uint64_t peakMemory();

/** Checks that the process has not used so many MiB more at any time since `before`. Sanitizers keep freed memory and
 *  have their own beside it, so nothing is checked under them. */
void expectLessMemoryTaken(std::uint64_t before, std::uint64_t mebibytes);

}  // namespace samples
