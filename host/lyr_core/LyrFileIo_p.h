#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include <lyr_core/LyrString.h>

/** An open file, closed in the end. */
class LyrFileHandle {
public:
    LyrFileHandle() noexcept = default;
    explicit LyrFileHandle(int descriptor) noexcept : mDescriptor(descriptor) {}
    LyrFileHandle(LyrFileHandle&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    LyrFileHandle& operator=(LyrFileHandle&& other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~LyrFileHandle() { close(); }

    int get() const noexcept { return mDescriptor; }
    explicit operator bool() const noexcept { return mDescriptor >= 0; }
    /** Closes it. False, and errno, if the system reports that something was lost. */
    bool close() noexcept;

private:
    int mDescriptor = -1;
};

/** The meaning of an errno number in plain English, whatever the locale, and what to do about it where that is known.
 */
std::string lyrErrorText(int number);

/** openat() that goes on after an interruption. */
LyrFileHandle lyrOpenAt(int folder, const std::string& name, int flags, unsigned int mode = 0) noexcept;

/** Writes all bytes. False, and errno, on failure. */
bool lyrWriteAll(int file, std::string_view bytes) noexcept;

/** True if a file holds exactly these bytes. False, and errno 0, if it holds others. */
bool lyrHoldsExactly(int file, std::string_view bytes) noexcept;

/** Reads a whole regular file. False, and a reason, if that cannot be done or it is larger than `limit` bytes; `error`
 * (may be null) is then the errno number, 0 if there is none. Memory is taken for what is there. May throw
 * std::bad_alloc. */
bool lyrReadFile(const std::string& path, std::size_t limit, std::string& bytes, std::string& reason,
                 int* error = nullptr);

/** What is said when memory ran out: needs none itself where there is not even enough for the sentence. */
LyrString lyrOutOfMemoryText() noexcept;
