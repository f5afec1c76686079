#include <algorithm>
#include <bit>
#include <cstring>
#include <span>

#include <lyr_volume/LyrDicomCodec_p.h>
#include <lyr_volume/LyrDicomDecoder_p.h>
#include <lyr_volume/LyrDicomSlice_p.h>
#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrSampleType_p.h>

namespace lyrvolume {
namespace {

constexpr const char* kRunLength = "1.2.840.10008.1.2.5";

/** Values of stored words, of which only some bits count. */
class WordReader {
public:
    explicit WordReader(const DicomPixelLayout& layout, bool bigEndian) : layout_(layout), bigEndian_(bigEndian) {
        shift_ = layout.highBit + 1 - layout.bitsStored;
        mask_ = layout.bitsStored >= 32 ? 0xFFFFFFFFU : (std::uint32_t{1} << layout.bitsStored) - 1U;
        sign_ = layout.isSigned ? std::uint32_t{1} << (layout.bitsStored - 1) : 0U;
    }

    /** Appends the values of whole words. */
    void append(std::span<const unsigned char> stored, std::vector<float>& out) const {
        const std::uint64_t bytes = layout_.bitsAllocated / 8;
        const bool scaled = layout_.slope != 1.0 || layout_.intercept != 0.0;
        for (std::size_t at = 0; at + bytes <= stored.size(); at += bytes) {
            std::uint32_t word = 0;
            for (std::uint64_t k = 0; k < bytes; ++k) {
                word = word << 8U | stored[at + (bigEndian_ ? k : bytes - 1 - k)];
            }
            word = (word >> shift_) & mask_;
            const std::int64_t number = (word & sign_) != 0 ? static_cast<std::int64_t>(word) - 2 * std::int64_t{sign_}
                                                            : static_cast<std::int64_t>(word);
            out.push_back(scaled ? static_cast<float>(static_cast<double>(number) * layout_.slope + layout_.intercept)
                                 : static_cast<float>(number));
        }
    }

private:
    const DicomPixelLayout& layout_;
    bool bigEndian_;
    std::uint64_t shift_ = 0;
    std::uint32_t mask_ = 0;
    std::uint32_t sign_ = 0;
};

bool readNative(const InputFile& file, const DicomPixelLayout& layout, std::vector<float>& out, ReadContext& context) {
    const WordReader words(layout, layout.bigEndian);
    const std::uint64_t length = layout.rows * layout.columns * layout.frames * (layout.bitsAllocated / 8);
    // Bytes that were written as words come in pairs, the last of which may reach one byte further.
    const bool pairs = layout.swappedBytes && layout.bitsAllocated == 8;
    std::vector<unsigned char> chunk(std::size_t{1} << 18U);
    for (std::uint64_t done = 0; done < length; done += chunk.size()) {
        const std::uint64_t count = std::min<std::uint64_t>(length - done, chunk.size());
        const std::uint64_t asked = pairs ? std::min(count + count % 2, layout.native.length - done) : count;
        if (file.readAt(layout.native.place + done, {chunk.data(), asked}) != asked) {
            return context.fail(file.path(), "its pixel data cannot be read to their end; the file is cut off");
        }
        for (std::size_t i = 0; pairs && i + 1 < asked; i += 2) {
            std::swap(chunk[i], chunk[i + 1]);
        }
        words.append({chunk.data(), count}, out);
    }
    return true;
}

/** The fragments of each frame: all for one frame, one for each, or as the table of offsets says. */
bool fragmentsOfFrames(const DicomPixelLayout& layout, std::vector<std::vector<FilePart>>& frames) {
    const std::vector<FilePart>& fragments = layout.fragments;
    frames.resize(layout.frames);
    if (layout.frames == 1) {
        frames[0] = fragments;
        return true;
    }
    const bool table = layout.offsets.size() == layout.frames && fragments.size() != layout.frames;
    if (!table && fragments.size() != layout.frames) {
        return false;
    }
    std::size_t frame = 0;
    for (std::size_t i = 0; i < fragments.size(); ++i) {
        if (table) {
            const std::uint64_t offset =
                fragments[i].place - fragments[0].place;  // items, like places, are 8 bytes apart
            while (frame + 1 < layout.frames && layout.offsets[frame + 1] <= offset) {
                ++frame;
            }
        } else {
            frame = i;
        }
        frames[frame].push_back(fragments[i]);
    }
    return std::none_of(frames.begin(), frames.end(), [](const auto& parts) { return parts.empty(); });
}

bool readParts(const InputFile& file, const std::vector<FilePart>& parts, std::vector<unsigned char>& data) {
    data.clear();
    for (const FilePart& part : parts) {
        const std::size_t before = data.size();
        data.resize(before + part.length);
        if (file.readAt(part.place, {data.data() + before, part.length}) != part.length) {
            return false;
        }
    }
    return true;
}

bool decodeFrame(std::span<const unsigned char> data, const DicomSlice& slice, DicomDecoder& decoder,
                 std::vector<float>& out, std::string& problem) {
    const DicomPixelLayout& layout = slice.pixels;
    DicomFrame frame;
    if (slice.transferSyntax == kRunLength) {
        if (!decodeRunLength(data, layout, frame.bytes)) {
            problem = "its run-length data do not fit its size; the file is damaged";
            return false;
        }
        WordReader(layout, false).append(frame.bytes, out);
        return true;
    }
    problem = codestreamProblem(data, layout, slice.transferSyntax);
    if (!problem.empty() || !decoder.decode(data, layout, slice.transferSyntax, frame, problem)) {
        return false;
    }
    const SampleFormat format{frame.type, std::endian::native == std::endian::big, layout.slope, layout.intercept};
    const std::size_t before = out.size();
    out.resize(before + layout.rows * layout.columns);
    convertSamples(format, frame.bytes.data(), layout.rows * layout.columns, 1, out.data() + before);
    return true;
}

}  // namespace

bool readDicomPixels(const DicomSlice& slice, DicomDecoder& decoder, std::vector<float>& out, ReadContext& context) {
    InputFile file;
    if (!file.open(slice.path, context)) {
        return false;
    }
    if (!slice.pixels.compressed()) {
        return readNative(file, slice.pixels, out, context);
    }
    std::vector<std::vector<FilePart>> frames;
    if (!fragmentsOfFrames(slice.pixels, frames)) {
        return context.fail(slice.path,
                            "it cannot be told which of its fragments belong to which frame; store it again");
    }
    std::vector<unsigned char> data;
    for (const std::vector<FilePart>& parts : frames) {
        std::string problem = "its pixel data cannot be read to their end; the file is cut off";
        if (!readParts(file, parts, data) || !decodeFrame(data, slice, decoder, out, problem)) {
            return context.fail(slice.path, problem);
        }
    }
    return true;
}

}  // namespace lyrvolume
