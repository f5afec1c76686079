#pragma once

#include <cstdint>
#include <string>

namespace lyrvolume {

/** The number types that files store. */
enum class SampleType { UInt8, Int8, UInt16, Int16, UInt32, Int32, UInt64, Int64, Float32, Float64 };

/** Bytes of one sample. */
std::uint64_t sampleBytes(SampleType type);
/** "uint8", "float32", … */
std::string sampleName(SampleType type);

/** How stored numbers become values: value = stored · slope + intercept, in double, narrowed once. */
struct SampleFormat {
    SampleType type = SampleType::UInt8;
    bool bigEndian = false;
    double slope = 1.0;
    double intercept = 0.0;
};

/** Turns `count` stored samples into floats. `stride` counts samples from one that is taken to the next. */
void convertSamples(const SampleFormat& format, const unsigned char* stored, std::uint64_t count, std::uint64_t stride,
                    float* out);

}  // namespace lyrvolume
