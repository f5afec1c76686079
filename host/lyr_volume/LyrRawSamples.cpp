#include <algorithm>
#include <bit>
#include <memory>
#include <optional>
#include <span>

#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrMemory_p.h>
#include <lyr_volume/LyrRawSamples_p.h>
#include <lyr_volume/LyrTextSamples_p.h>

namespace lyrvolume {
namespace {

constexpr std::uint64_t kChunkBytes = std::uint64_t{1} << 18U;
constexpr std::uint64_t kMostInterleaved = 65536;  // one group of samples stays a small piece of memory

bool multiply(std::uint64_t a, std::uint64_t b, std::uint64_t& product) {
    return !__builtin_mul_overflow(a, b, &product);
}

/** What must be there, counted once. */
struct Amount {
    std::uint64_t voxels = 0;         ///< of one frame
    std::uint64_t samplesInFile = 0;  ///< of all frames, in each file
    std::uint64_t bytesInFile = 0;    ///< the same, decoded
};

bool countAll(const RawLayout& layout, Amount& amount, ReadContext& context) {
    if (!countVoxels(layout.header, layout.size, amount.voxels, context)) {
        return false;
    }
    std::uint64_t samples = 0;
    std::uint64_t bytes = 0;
    if (layout.interleaved == 0 || layout.interleaved > kMostInterleaved || layout.frames == 0 ||
        layout.files.empty() || !multiply(amount.voxels, layout.interleaved, samples) ||
        !multiply(samples, layout.frames, samples) || !multiply(samples, sampleBytes(layout.format.type), bytes)) {
        return context.fail(layout.header, "the header claims an impossible number of frames; the file is damaged");
    }
    if (samples % (layout.files.size() * layout.interleaved) != 0) {
        return context.fail(layout.header, "the data cannot be shared out evenly among " +
                                               std::to_string(layout.files.size()) + " files; check the list of files");
    }
    amount.samplesInFile = samples / layout.files.size();
    amount.bytesInFile = bytes / layout.files.size();
    return true;
}

std::string shortage(const RawLayout& layout, const Amount& amount, std::uint64_t there) {
    return "the header claims " + std::to_string(amount.bytesInFile) + " bytes of " + sampleName(layout.format.type) +
           " data for " + sizeText(layout.size) +
           (layout.frames * layout.interleaved > 1
                ? " × " + std::to_string(layout.frames * layout.interleaved) + " frames"
                : std::string()) +
           (layout.files.size() > 1 ? " in each of " + std::to_string(layout.files.size()) + " files" : std::string()) +
           ", only " + std::to_string(there) + " are there; the file is cut off or its header is wrong";
}

/** The most decoded bytes that a file can hold, from its length alone. */
std::uint64_t mostBytes(const RawLayout& layout, const DataFile& source, const InputFile& file) {
    const std::uint64_t start = source.atEnd ? 0 : source.place;
    std::uint64_t stored = file.length() > start ? file.length() - start : 0;
    switch (layout.encoding) {
        case Encoding::Raw:
            return stored > source.skip ? stored - source.skip : 0;
        case Encoding::Deflate:
            stored = std::min(stored, source.storedLength);
            return stored > ~std::uint64_t{0} / kLargestDeflateRatio ? ~std::uint64_t{0}
                                                                     : stored * kLargestDeflateRatio;
        case Encoding::Text:  // a digit and a blank make one sample, the last needs no blank
            return (stored / 2 + stored % 2) * sampleBytes(layout.format.type);
        case Encoding::Hex:
            return stored / 2;
    }
    return 0;
}

/** The checks that need no more than the lengths of the files. */
bool checkLengths(const RawLayout& layout, const Amount& amount, ReadContext& context) {
    for (const DataFile& source : layout.files) {
        InputFile file;
        if (!file.open(source.path, context, layout.header)) {
            return false;
        }
        if (layout.encoding == Encoding::Deflate && source.storedLength != ~std::uint64_t{0} &&
            (source.place > file.length() || source.storedLength > file.length() - source.place)) {
            return context.fail(source.path, "the header claims " + std::to_string(source.storedLength) +
                                                 " compressed bytes, fewer are there; the file is cut off");
        }
        const std::uint64_t most = mostBytes(layout, source, file);
        if (most < amount.bytesInFile) {
            return context.fail(source.path, shortage(layout, amount, most));
        }
        const bool surplus = layout.encoding == Encoding::Raw && !source.atEnd && most > amount.bytesInFile;
        if (surplus && layout.surplusMeansCut) {
            return context.fail(layout.header,
                                "its last line is not complete and there are more data than it claims; "
                                "the header is cut off");
        }
        if (surplus) {
            context.warn(source.path,
                         std::to_string(most - amount.bytesInFile) + " bytes behind the data were ignored");
        }
    }
    return true;
}

/** Collects the first frame out of the samples as they come by. */
class FrameCollector {
public:
    FrameCollector(const SampleFormat& format, std::uint64_t interleaved, std::uint64_t voxels, std::vector<float>& out)
        : format_(format), interleaved_(interleaved), missing_(voxels), out_(out) {}

    /** Takes whole groups of interleaved samples. */
    void take(std::span<const unsigned char> stored) {
        const std::uint64_t group = interleaved_ * sampleBytes(format_.type);
        const std::uint64_t count = std::min<std::uint64_t>(missing_, stored.size() / group);
        chunk_.resize(count);
        convertSamples(format_, stored.data(), count, interleaved_, chunk_.data());
        out_.insert(out_.end(), chunk_.begin(), chunk_.end());
        missing_ -= count;
    }

    bool complete() const { return missing_ == 0; }

private:
    SampleFormat format_;
    std::uint64_t interleaved_;
    std::uint64_t missing_;
    std::vector<float>& out_;
    std::vector<float> chunk_;
};

/** Reads until `out` is full or the stream ends. */
std::optional<std::size_t> fill(ByteStream& stream, std::span<unsigned char> out) {
    std::size_t done = 0;
    while (done < out.size()) {
        const std::optional<std::size_t> count = stream.read(out.subspan(done));
        if (!count) {
            return std::nullopt;
        }
        if (*count == 0) {
            break;
        }
        done += *count;
    }
    return done;
}

/** Reads a compressed stream on behind its data, which checks its checksum. */
bool finishStream(ByteStream& stream, const std::string& path, std::span<unsigned char> buffer, ReadContext& context) {
    constexpr std::uint64_t kMostSurplus = std::uint64_t{1} << 26U;
    std::uint64_t surplus = 0;
    for (;;) {
        const std::optional<std::size_t> count = stream.read(buffer);
        if (!count) {
            return false;
        }
        if (*count == 0) {
            break;
        }
        surplus += *count;
        if (surplus > kMostSurplus) {
            return context.fail(path, "far more data are there than the header claims; the header is wrong");
        }
    }
    if (surplus > 0) {
        context.warn(path, std::to_string(surplus) + " bytes behind the data were ignored");
    }
    return true;
}

/** Opened file, its stream, and the message when it ends too soon. */
class BinaryPart {
public:
    BinaryPart(const RawLayout& layout, const DataFile& source, const Amount& amount, ReadContext& context)
        : layout_(layout), source_(source), amount_(amount), context_(context) {}

    bool read(FrameCollector& collector, double partsBefore) {
        if (!file_.open(source_.path, context_) || !start()) {
            return false;
        }
        const std::uint64_t group = layout_.interleaved * sampleBytes(layout_.format.type);
        // Whole groups at a time; a group of thousands of frames may be longer than the usual piece.
        const std::uint64_t full = std::max(group, kChunkBytes / group * group);
        buffer_.resize(std::max<std::uint64_t>(std::min(amount_.bytesInFile, full), 4096));
        std::uint64_t rest = amount_.bytesInFile;
        while (rest > 0 && !(collector.complete() && layout_.encoding == Encoding::Raw)) {
            const std::span<unsigned char> piece(buffer_.data(), std::min<std::uint64_t>(rest, buffer_.size()));
            const std::optional<std::size_t> count = fill(*stream_, piece);
            if (!count) {
                return false;
            }
            if (*count < piece.size()) {
                return context_.fail(source_.path, shortage(layout_, amount_, amount_.bytesInFile - rest + *count));
            }
            collector.take(piece);
            rest -= piece.size();
            const double done = (partsBefore + stream_->consumed()) / static_cast<double>(layout_.files.size());
            if (!context_.advance(std::min(done, 1.0))) {
                return false;
            }
        }
        return layout_.encoding == Encoding::Raw || finishStream(*stream_, source_.path, buffer_, context_);
    }

private:
    bool start() {
        if (layout_.encoding == Encoding::Raw) {
            const std::uint64_t place = source_.atEnd ? file_.length() - std::min(amount_.bytesInFile, file_.length())
                                                      : source_.place + source_.skip;
            stream_ = plainStream(file_, place);
            return true;
        }
        stream_ = inflatedStream(file_, source_.place, source_.storedLength, context_);
        return skip();
    }

    bool skip() {
        std::vector<unsigned char> waste(std::min<std::uint64_t>(source_.skip, kChunkBytes));
        for (std::uint64_t rest = source_.skip; rest > 0;) {
            const auto count = fill(*stream_, {waste.data(), std::min<std::uint64_t>(rest, waste.size())});
            if (!count) {
                return false;
            }
            if (*count == 0) {
                return context_.fail(source_.path, "the data end before their start at byte " +
                                                       std::to_string(source_.skip) + "; the file is cut off");
            }
            rest -= *count;
        }
        return true;
    }

    const RawLayout& layout_;
    const DataFile& source_;
    const Amount& amount_;
    ReadContext& context_;
    InputFile file_;
    std::unique_ptr<ByteStream> stream_;
    std::vector<unsigned char> buffer_;
};

}  // namespace

std::string sizeText(const std::array<std::uint64_t, 3>& size) {
    return std::to_string(size[0]) + " × " + std::to_string(size[1]) + " × " + std::to_string(size[2]);
}

bool countVoxels(const std::string& place, const std::array<std::uint64_t, 3>& size, std::uint64_t& count,
                 ReadContext& context) {
    std::uint64_t product = 0;
    std::uint64_t bytes = 0;
    if (size[0] == 0 || size[1] == 0 || size[2] == 0) {
        return context.fail(place, "the size " + sizeText(size) + " has no voxels; the header is wrong");
    }
    if (!multiply(size[0], size[1], product) || !multiply(product, size[2], product) ||
        !multiply(product, sizeof(float), bytes) || bytes > (~std::uint64_t{0} >> 1U)) {
        return context.fail(place, "the size " + sizeText(size) + " is impossible; the header is wrong");
    }
    if (bytes > availableMemory()) {
        return context.fail(place, "the size " + sizeText(size) + " needs " + std::to_string(bytes >> 20U) +
                                       " MiB, more than the memory that is free on this machine; close other " +
                                       "programs or take a part of the volume");
    }
    count = product;
    return true;
}

bool readRawSamples(const RawLayout& layout, std::vector<float>& out, ReadContext& context) {
    Amount amount;
    if (!countAll(layout, amount, context) || !checkLengths(layout, amount, context)) {
        return false;
    }
    // Reserved memory is only taken by the samples that are really put there.
    out.reserve(amount.voxels);
    SampleFormat format = layout.format;
    if (layout.encoding == Encoding::Text) {
        format.type = SampleType::Float64;  // what decimal numbers are handed on as
        format.bigEndian = std::endian::native == std::endian::big;
    }
    FrameCollector collector(format, layout.interleaved, amount.voxels, out);
    const ByteSink sink = [&collector](std::span<const unsigned char> stored) { collector.take(stored); };
    double done = 0.0;
    for (const DataFile& source : layout.files) {
        const TextPart text{source.path, source.place + source.skip};
        const std::uint64_t group = layout.interleaved * sampleBytes(layout.format.type);
        const bool read = layout.encoding == Encoding::Text
                              ? readDecimalSamples(text, amount.samplesInFile, layout.interleaved, sink, context)
                          : layout.encoding == Encoding::Hex
                              ? readHexBytes(text, amount.bytesInFile, group, sink, context)
                              : BinaryPart(layout, source, amount, context).read(collector, done);
        if (!read) {
            return false;
        }
        done += 1.0;
    }
    return collector.complete() || context.fail(layout.header, "the data are not complete; the file is damaged");
}

}  // namespace lyrvolume
