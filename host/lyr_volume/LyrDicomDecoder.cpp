#include <dlfcn.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <lyr_volume/LyrDicomDecoder_p.h>
#include <lyr_volume/LyrDicomProtocol_p.h>

namespace lyrvolume {
namespace {

constexpr int kPatienceMs = 120'000;  // for one frame; a codec that takes longer hangs

/** Writes a small DICOM file, explicit and little-endian, in memory. */
class DataSetWriter {
public:
    void text(std::uint16_t group, std::uint16_t element, const char* type, std::string value) {
        if (value.size() % 2 != 0) {
            value.push_back(type[0] == 'U' ? '\0' : ' ');
        }
        head(group, element, type);
        put(value.size(), 2);
        bytes_ += value;
    }

    void number(std::uint16_t group, std::uint16_t element, std::uint64_t value) {
        head(group, element, "US");
        put(2, 2);
        put(value, 2);
    }

    /** Pixel data in one fragment behind an empty table of offsets. */
    void pixels(std::span<const unsigned char> data) {
        head(0x7FE0, 0x0010, "OB");
        put(0, 2);
        put(0xFFFFFFFF, 4);
        item(0xE000, 0);
        item(0xE000, data.size() + data.size() % 2);
        bytes_.append(reinterpret_cast<const char*>(data.data()), data.size());
        bytes_.append(data.size() % 2, '\0');
        item(0xE0DD, 0);
    }

    const std::string& bytes() const { return bytes_; }

private:
    void put(std::uint64_t value, int count) {
        for (int i = 0; i < count; ++i) {
            bytes_.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
        }
    }

    void head(std::uint16_t group, std::uint16_t element, const char* type) {
        put(group, 2);
        put(element, 2);
        bytes_.append(type, 2);
    }

    void item(std::uint16_t element, std::uint64_t length) {
        put(0xFFFE, 2);
        put(element, 2);
        put(length, 4);
    }

    std::string bytes_;
};

std::string cleanFile(std::span<const unsigned char> codestream, const DicomPixelLayout& layout,
                      const std::string& transferSyntax) {
    const char* secondaryCapture = "1.2.840.10008.5.1.4.1.1.7";
    const char* instance = "2.25.1";
    DataSetWriter set;
    set.text(0x0002, 0x0002, "UI", secondaryCapture);
    set.text(0x0002, 0x0003, "UI", instance);
    set.text(0x0002, 0x0010, "UI", transferSyntax);
    set.text(0x0008, 0x0016, "UI", secondaryCapture);
    set.text(0x0008, 0x0018, "UI", instance);
    set.number(0x0028, 0x0002, 1);
    set.text(0x0028, 0x0004, "CS", "MONOCHROME2");
    set.number(0x0028, 0x0010, layout.rows);
    set.number(0x0028, 0x0011, layout.columns);
    set.number(0x0028, 0x0100, layout.bitsAllocated);
    set.number(0x0028, 0x0101, layout.bitsStored);
    set.number(0x0028, 0x0102, layout.highBit);
    set.number(0x0028, 0x0103, layout.isSigned ? 1 : 0);
    set.pixels(codestream);
    return std::string(128, '\0') + "DICM" + set.bytes();
}

/** The program lies in a folder beside this library, in the build tree as in an installation. */
std::string decoderProgram() {
    Dl_info library{};
    if (dladdr(reinterpret_cast<const void*>(&decoderProgram), &library) == 0 || library.dli_fname == nullptr) {
        return {};
    }
    std::error_code ignored;
    const std::filesystem::path path = std::filesystem::absolute(library.dli_fname, ignored);
    return (path.parent_path() / "lys-helpers" / "lyr_dicom_decoder").string();
}

}  // namespace

DicomDecoder::~DicomDecoder() {
    stop(false);
}

bool DicomDecoder::start(std::string& problem) {
    const std::string program = decoderProgram();
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        problem = "the decoder for compressed DICOM cannot be reached: " + std::generic_category().message(errno);
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", 1, 0);  // 1: for writing
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", 1, 0);
    std::string name = program;
    char* arguments[] = {name.data(), nullptr};
    const int error = posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    socket_ = ends[0];
    if (error != 0) {
        process_ = -1;
        stop(true);
        problem = "the decoder for compressed DICOM cannot be started (" + program +
                  "): " + std::generic_category().message(error) + "; install it again or store the files uncompressed";
        return false;
    }
    return true;
}

void DicomDecoder::stop(bool atOnce) {
    if (socket_ >= 0) {
        close(socket_);
        socket_ = -1;
    }
    if (process_ > 0) {
        if (atOnce) {
            kill(process_, SIGKILL);
        }
        while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
        process_ = -1;
    }
}

bool DicomDecoder::sendAll(const void* source, std::size_t length) {
    const auto* bytes = static_cast<const char*>(source);
    while (length > 0) {
        const ssize_t count = send(socket_, bytes, length, MSG_NOSIGNAL);
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

bool DicomDecoder::receive(void* target, std::size_t length) {
    auto* bytes = static_cast<char*>(target);
    while (length > 0) {
        pollfd wait{socket_, POLLIN, 0};
        const int ready = poll(&wait, 1, kPatienceMs);
        if (ready < 0 && errno == EINTR) {
            continue;
        }
        const ssize_t count = ready > 0 ? recv(socket_, bytes, length, 0) : 0;
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

bool DicomDecoder::exchange(const std::string& file, const DicomPixelLayout& layout, DicomFrame& frame,
                            std::string& problem) {
    const DicomRequest request{file.size()};
    DicomAnswer answer;
    if (!sendAll(&request, sizeof(request)) || !sendAll(file.data(), file.size()) ||
        !receive(&answer, sizeof(answer))) {
        return false;
    }
    if (answer.good == 0) {
        problem.resize(answer.length < 4096 ? answer.length : 0);
        if (!receive(problem.data(), problem.size())) {
            problem.clear();
            return false;
        }
        problem = "its compressed pixel data cannot be decoded (" + problem + "); the file is damaged";
        return true;
    }
    const bool known = answer.type <= static_cast<std::uint32_t>(SampleType::Float64);
    frame.type = known ? static_cast<SampleType>(answer.type) : SampleType::UInt8;
    if (!known || answer.columns != layout.columns || answer.rows != layout.rows ||
        answer.length != layout.columns * layout.rows * sampleBytes(frame.type)) {
        return false;
    }
    frame.bytes.resize(answer.length);
    return receive(frame.bytes.data(), frame.bytes.size());
}

bool DicomDecoder::decode(std::span<const unsigned char> codestream, const DicomPixelLayout& layout,
                          const std::string& transferSyntax, DicomFrame& frame, std::string& problem) {
    problem.clear();
    if (socket_ < 0 && !start(problem)) {
        return false;
    }
    if (!exchange(cleanFile(codestream, layout, transferSyntax), layout, frame, problem)) {
        stop(true);
        problem = "its compressed pixel data cannot be decoded; the file is damaged";
        return false;
    }
    return problem.empty();
}

}  // namespace lyrvolume
