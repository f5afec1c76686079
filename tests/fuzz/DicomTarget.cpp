#include <lyr_volume/LyrDicomCodec_p.h>
#include <lyr_volume/LyrDicomDecoder_p.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

#include "fuzz/FuzzTargets.h"

namespace {

using lyrvolume::DicomPixelLayout;

constexpr const char* TRANSFER_SYNTAXES[] = {
    "1.2.840.10008.1.2.4.50", "1.2.840.10008.1.2.4.51", "1.2.840.10008.1.2.4.57", "1.2.840.10008.1.2.4.70",
    "1.2.840.10008.1.2.4.80", "1.2.840.10008.1.2.4.81", "1.2.840.10008.1.2.4.90", "1.2.840.10008.1.2.4.91"};

constexpr std::size_t HEAD = 4;
/** Fits into the buffer of a socket, as nobody takes it out. */
constexpr std::size_t LONGEST_STREAM = 16384;

/** Columns, rows and, in one byte each, bits, sign and transfer syntax; the length of the codestream in 16-byte units.
 */
DicomPixelLayout layoutOf(fuzz::Bytes head) {
    DicomPixelLayout layout;
    layout.columns = head[0] + 1U;
    layout.rows = head[1] + 1U;
    layout.bitsAllocated = 8U << (head[2] % 3U);
    layout.bitsStored = layout.bitsAllocated;
    layout.highBit = layout.bitsStored - 1;
    layout.isSigned = (head[2] & 0x80U) != 0;
    return layout;
}

/** The end of a socket at whose other end the answer lies already, and nothing comes after it. */
class Answered {
public:
    explicit Answered(fuzz::Bytes answer) {
        const bool made = ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, mEnds) == 0 &&
                          ::send(mEnds[1], answer.data(), answer.size(), MSG_NOSIGNAL | MSG_DONTWAIT) ==
                              static_cast<ssize_t>(answer.size()) &&
                          ::shutdown(mEnds[1], SHUT_WR) == 0;
        fuzz::require(made, "the answer could be laid into a socket");
    }
    ~Answered() { ::close(mEnds[1]); }
    Answered(const Answered&) = delete;
    Answered& operator=(const Answered&) = delete;

    /** The caller's to close. */
    int socket() const { return mEnds[0]; }

private:
    int mEnds[2] = {-1, -1};
};

}  // namespace

/** A compressed frame, and what the process that decodes it may answer. */
fuzz::Accepted fuzz::dicomFrame(Bytes bytes) {
    if (bytes.size() < HEAD) {
        return 0;
    }
    const DicomPixelLayout layout = layoutOf(bytes);
    const Bytes rest = bytes.subspan(HEAD);
    const std::size_t split = std::min({bytes[3] * std::size_t{16}, rest.size(), LONGEST_STREAM});
    const Bytes stream = rest.first(split);
    const Bytes answer = rest.subspan(split, std::min(rest.size() - split, LONGEST_STREAM));

    std::vector<unsigned char> samples;
    const bool unpacked = lyrvolume::decodeRunLength(stream, layout, samples);
    require(!unpacked || samples.size() == layout.rows * layout.columns * layout.bitsAllocated / 8,
            "run-length data fill their frame");
    const std::string syntax = TRANSFER_SYNTAXES[(bytes[2] >> 2U) % std::size(TRANSFER_SYNTAXES)];
    const bool sound = lyrvolume::codestreamProblem(stream, layout, syntax).empty();
    require(stream.size() > 4 || !sound, "a stream without a header is refused");

    const Answered other(answer);
    lyrvolume::DicomDecoder decoder(other.socket());
    lyrvolume::DicomFrame frame;
    std::string problem;
    const bool decoded = decoder.decode(stream, layout, syntax, frame, problem);
    require(decoded == problem.empty(), "a frame is refused with a reason");
    require(!decoded || frame.bytes.size() == layout.rows * layout.columns * lyrvolume::sampleBytes(frame.type),
            "a decoded frame has a sample for each pixel");
    return bitIf(unpacked, 0) | bitIf(sound, 1) | bitIf(decoded, 2);
}
