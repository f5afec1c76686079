#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#include <lyr_volume/LyrSampleType_p.h>

namespace lyrvolume {
namespace {

struct TypeFacts {
    std::uint64_t bytes;
    const char* name;
};

constexpr std::array<TypeFacts, 10> kTypes{{{1, "uint8"},
                                            {1, "int8"},
                                            {2, "uint16"},
                                            {2, "int16"},
                                            {4, "uint32"},
                                            {4, "int32"},
                                            {8, "uint64"},
                                            {8, "int64"},
                                            {4, "float32"},
                                            {8, "float64"}}};

template <typename T>
T load(const unsigned char* stored, bool swap) {
    std::array<unsigned char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), stored, sizeof(T));
    if (swap) {
        std::reverse(bytes.begin(), bytes.end());
    }
    return std::bit_cast<T>(bytes);
}

template <typename T>
void convert(const SampleFormat& format, const unsigned char* stored, std::uint64_t count, std::uint64_t stride,
             float* out) {
    const bool swap = format.bigEndian != (std::endian::native == std::endian::big);
    const bool scaled = format.slope != 1.0 || format.intercept != 0.0;
    const std::uint64_t step = stride * sizeof(T);
    for (std::uint64_t i = 0; i < count; ++i, stored += step) {
        const T value = load<T>(stored, swap);
        out[i] = scaled ? static_cast<float>(static_cast<double>(value) * format.slope + format.intercept)
                        : static_cast<float>(value);
    }
}

}  // namespace

std::uint64_t sampleBytes(SampleType type) {
    return kTypes[static_cast<std::size_t>(type)].bytes;
}

std::string sampleName(SampleType type) {
    return kTypes[static_cast<std::size_t>(type)].name;
}

void convertSamples(const SampleFormat& format, const unsigned char* stored, std::uint64_t count, std::uint64_t stride,
                    float* out) {
    switch (format.type) {
        case SampleType::UInt8:
            return convert<std::uint8_t>(format, stored, count, stride, out);
        case SampleType::Int8:
            return convert<std::int8_t>(format, stored, count, stride, out);
        case SampleType::UInt16:
            return convert<std::uint16_t>(format, stored, count, stride, out);
        case SampleType::Int16:
            return convert<std::int16_t>(format, stored, count, stride, out);
        case SampleType::UInt32:
            return convert<std::uint32_t>(format, stored, count, stride, out);
        case SampleType::Int32:
            return convert<std::int32_t>(format, stored, count, stride, out);
        case SampleType::UInt64:
            return convert<std::uint64_t>(format, stored, count, stride, out);
        case SampleType::Int64:
            return convert<std::int64_t>(format, stored, count, stride, out);
        case SampleType::Float32:
            return convert<float>(format, stored, count, stride, out);
        case SampleType::Float64:
            return convert<double>(format, stored, count, stride, out);
    }
}

}  // namespace lyrvolume
