// Decodes compressed DICOM frames by ITK, in a process of its own: the codecs end the process on some damaged files,
// write to standard error and lose memory, which must not happen to the program that opens a volume. Speaks over the
// socket that is its standard input, and ends when the other side closes it.

#include <itkGDCMImageIO.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include <lyr_volume/LyrDicomProtocol_p.h>
#include <lyr_volume/LyrSampleType_p.h>

namespace {

using lyrvolume::DicomAnswer;
using lyrvolume::DicomRequest;
using lyrvolume::SampleType;

constexpr int kSocket = 0;
constexpr std::uint64_t kLongestFile = std::uint64_t{1} << 32U;

bool receive(void* target, std::size_t length) {
    auto* bytes = static_cast<char*>(target);
    while (length > 0) {
        const ssize_t count = read(kSocket, bytes, length);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

bool sendAll(const void* source, std::size_t length) {
    const auto* bytes = static_cast<const char*>(source);
    while (length > 0) {
        const ssize_t count = send(kSocket, bytes, length, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes += count;
        length -= static_cast<std::size_t>(count);
    }
    return true;
}

bool writeAll(int file, const std::vector<char>& content) {
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = write(file, content.data() + done, content.size() - done);
        if (count <= 0) {
            return false;
        }
        done += static_cast<std::size_t>(count);
    }
    return true;
}

std::optional<SampleType> sampleType(itk::IOComponentEnum type) {
    switch (type) {
        case itk::IOComponentEnum::UCHAR:
            return SampleType::UInt8;
        case itk::IOComponentEnum::CHAR:
            return SampleType::Int8;
        case itk::IOComponentEnum::USHORT:
            return SampleType::UInt16;
        case itk::IOComponentEnum::SHORT:
            return SampleType::Int16;
        case itk::IOComponentEnum::UINT:
            return SampleType::UInt32;
        case itk::IOComponentEnum::INT:
            return SampleType::Int32;
        default:
            return std::nullopt;
    }
}

/** The first frame of a file. Throws what ITK throws. */
std::vector<unsigned char> decode(const std::string& path, DicomAnswer& answer) {
    const auto io = itk::GDCMImageIO::New();
    io->SetFileName(path);
    io->ReadImageInformation();
    const std::optional<SampleType> type = sampleType(io->GetComponentType());
    const unsigned int axes = io->GetNumberOfDimensions();
    if (!type || io->GetNumberOfComponents() != 1 || axes < 2 || (axes > 2 && io->GetDimensions(2) != 1)) {
        return {};
    }
    itk::ImageIORegion region(axes);
    for (unsigned int i = 0; i < axes; ++i) {
        region.SetIndex(i, 0);
        region.SetSize(i, io->GetDimensions(i));
    }
    io->SetIORegion(region);
    answer.type = static_cast<std::uint32_t>(*type);
    answer.columns = io->GetDimensions(0);
    answer.rows = io->GetDimensions(1);
    std::vector<unsigned char> samples(static_cast<std::size_t>(io->GetImageSizeInBytes()));
    io->Read(samples.data());
    return samples;
}

/** Answers one request; false when the other side is gone. */
bool serve() {
    DicomRequest request;
    if (!receive(&request, sizeof(request)) || request.length > kLongestFile) {
        return false;
    }
    std::vector<char> content(request.length);
    if (!receive(content.data(), content.size())) {
        return false;
    }
    const int file = memfd_create("lyr_dicom_decoder", MFD_CLOEXEC);
    DicomAnswer answer;
    std::vector<unsigned char> samples;
    std::string problem = "its samples are of no supported type";
    try {
        if (file >= 0 && writeAll(file, content)) {
            samples = decode("/proc/self/fd/" + std::to_string(file), answer);
        }
    } catch (const itk::ExceptionObject& exception) {
        problem = exception.GetDescription();
    } catch (const std::exception& exception) {
        problem = exception.what();
    }
    if (file >= 0) {
        close(file);
    }
    answer.good = samples.empty() ? 0 : 1;
    answer.length = answer.good != 0 ? samples.size() : problem.size();
    const void* body = answer.good != 0 ? static_cast<const void*>(samples.data()) : problem.data();
    return sendAll(&answer, sizeof(answer)) && sendAll(body, answer.length);
}

}  // namespace

int main() {
    prctl(PR_SET_DUMPABLE, 0);  // no core files: ending on a damaged file is expected
    while (serve()) {
    }
    // Straight out: what the codecs leave behind is of no interest.
    _exit(0);
}
