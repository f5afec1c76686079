#include <lyr_core/LyrFileIo_p.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace {

/** Repeats a call that was interrupted. */
template <class Call>
auto uninterrupted(Call call) noexcept {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

const char* adviceFor(int number) {
    switch (number) {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return "; make room or choose another place";
        case EROFS:
        case EACCES:
        case EPERM:
            return "; choose another place or have the permissions changed";
        case ENOENT:
        case ENOTDIR:
            return "; check the path";
        case EIO:
            return "; the disk or its connection may be failing, choose another place";
        default:
            return "";
    }
}

bool readAll(int file, std::size_t limit, std::string& bytes) {
    std::array<char, 65536> block;
    for (;;) {
        const ssize_t count = uninterrupted([&] { return ::read(file, block.data(), block.size()); });
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            return true;
        }
        bytes.append(block.data(), static_cast<std::size_t>(count));
        if (bytes.size() > limit) {
            errno = EFBIG;
            return false;
        }
    }
}

}  // namespace

bool LyrFileHandle::close() noexcept {
    if (mDescriptor < 0) {
        return true;
    }
    // After an interruption the descriptor is closed all the same.
    return ::close(std::exchange(mDescriptor, -1)) == 0 || errno == EINTR;
}

std::string lyrErrorText(int number) {
    const char* text = strerrordesc_np(number);
    return (text ? std::string(text) : "error " + std::to_string(number)) + adviceFor(number);
}

LyrFileHandle lyrOpenAt(int folder, const std::string& name, int flags, unsigned int mode) noexcept {
    return LyrFileHandle(uninterrupted([&] { return ::openat(folder, name.c_str(), flags | O_CLOEXEC, mode); }));
}

bool lyrWriteAll(int file, std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t count = uninterrupted([&] { return ::write(file, bytes.data(), bytes.size()); });
        if (count <= 0) {
            errno = count == 0 ? EIO : errno;
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

bool lyrHoldsExactly(int file, std::string_view bytes) noexcept {
    std::array<char, 65536> block;
    std::size_t done = 0;
    for (;;) {
        const ssize_t count =
            uninterrupted([&] { return ::pread(file, block.data(), block.size(), static_cast<off_t>(done)); });
        if (count < 0) {
            return false;
        }
        if (count == 0) {
            errno = 0;
            return done == bytes.size();
        }
        const auto length = static_cast<std::size_t>(count);
        if (bytes.substr(done, length) != std::string_view(block.data(), length)) {
            errno = 0;
            return false;
        }
        done += length;
    }
}

bool lyrReadFile(const std::string& path, std::size_t limit, std::string& bytes, std::string& reason, int* error) {
    const auto fail = [&](int number, const std::string& text) {
        if (error) {
            *error = number;
        }
        reason = text;
        return false;
    };
    bytes.clear();
    if (path.find('\0') != std::string::npos) {
        return fail(EINVAL, "the path holds the character 0");
    }
    // Not to be held up by a pipe that nobody writes to.
    const LyrFileHandle file = lyrOpenAt(AT_FDCWD, path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0) {
        const int number = errno;
        return fail(number, "cannot be opened: " + lyrErrorText(number));
    }
    if (!S_ISREG(status.st_mode)) {
        return fail(0, S_ISDIR(status.st_mode) ? "this is a folder, not a file" : "this is no ordinary file");
    }
    if (status.st_size > static_cast<off_t>(limit)) {
        return fail(EFBIG, "larger than the " + std::to_string(limit >> 20) + " MiB that are read");
    }
    bytes.reserve(static_cast<std::size_t>(status.st_size));
    if (!readAll(file.get(), limit, bytes)) {
        const int number = errno;
        return fail(number, "cannot be read: " + lyrErrorText(number));
    }
    return true;
}

LyrString lyrOutOfMemoryText() noexcept {
    try {
        return LyrString("there is not enough memory");
    } catch (...) {
        return LyrString("no memory left");  // short enough to be kept inside a string itself
    }
}
