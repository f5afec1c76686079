#pragma once

#include <sys/types.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <lyr_volume/LyrDicomSlice_p.h>
#include <lyr_volume/LyrSampleType_p.h>

namespace lyrvolume {

/** One decoded frame: stored numbers before slope and intercept, in this machine's byte order. */
struct DicomFrame {
    SampleType type = SampleType::UInt8;
    std::vector<unsigned char> bytes;
};

/** The process that decodes JPEG and JPEG 2000 frames by ITK. It starts with the first frame and ends with this object.
 *  It never sees the file: it gets a data set made anew from the layout and the codestream. */
class DicomDecoder {
public:
    DicomDecoder() = default;
    /** Asks who is at the other end of this socket, which is closed in the end, instead of a process of its own. */
    explicit DicomDecoder(int socket) : socket_(socket) {}
    ~DicomDecoder();
    DicomDecoder(const DicomDecoder&) = delete;
    DicomDecoder& operator=(const DicomDecoder&) = delete;

    /** False with a reason in `problem`, also when the process did not survive the frame. */
    bool decode(std::span<const unsigned char> codestream, const DicomPixelLayout& layout,
                const std::string& transferSyntax, DicomFrame& frame, std::string& problem);

private:
    bool start(std::string& problem);
    void stop(bool atOnce);
    bool sendAll(const void* source, std::size_t length);
    bool receive(void* target, std::size_t length);
    bool exchange(const std::string& file, const DicomPixelLayout& layout, DicomFrame& frame, std::string& problem);

    int socket_ = -1;
    pid_t process_ = -1;
};

}  // namespace lyrvolume
