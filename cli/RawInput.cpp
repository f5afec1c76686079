#include "RawInput.h"

#include "Failure.h"
#include "Process.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <bit>
#include <cerrno>

namespace lys::cli {

// Samples go between file and memory as they are.
static_assert(std::endian::native == std::endian::little && sizeof(float) == 4);

RawInput::RawInput(const std::string& path) : mName(path == "-" ? "standard input" : path) {
    mFile = Descriptor(path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (!mFile.isOpen() || fstat(mFile.number(), &status) != 0) {
        fail(systemReason());
    }
    if (S_ISDIR(status.st_mode)) {
        fail("it is a folder; raw values are a file of 32-bit floats");
    }
    const off_t begin = S_ISREG(status.st_mode) ? lseek(mFile.number(), 0, SEEK_CUR) : -1;
    if (begin >= 0) {
        const off_t bytes = status.st_size > begin ? status.st_size - begin : 0;
        if (bytes % 4 != 0) {
            failCut(bytes);
        }
        mCount = bytes / 4;
    }
}

std::size_t RawInput::read(std::span<float> values) {
    const std::span<std::byte> bytes = std::as_writable_bytes(values);
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = ::read(mFile.number(), bytes.data() + filled, bytes.size() - filled);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            filled += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            fail(systemReason());
        } else {
            checkInterrupted();
        }
    }
    mBytesRead += static_cast<std::int64_t>(filled);
    if (filled % 4 != 0) {
        failCut(mBytesRead);
    }
    return filled / 4;
}

void RawInput::fail(const std::string& reason) const {
    throwUnusable(mName + ": cannot be read: " + reason);
}

void RawInput::failCut(std::int64_t bytes) const {
    throwUnusable(mName + ": " + std::to_string(bytes) +
                  " bytes are no whole number of 32-bit floats (4 bytes each); is the file cut off?");
}

}  // namespace lys::cli
