#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

namespace lys::cli {

/** An open file, closed in the end. */
class Descriptor {
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int number) noexcept : mNumber(number) {}
    Descriptor(Descriptor&& other) noexcept : mNumber(std::exchange(other.mNumber, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mNumber, other.mNumber);
        return *this;
    }
    ~Descriptor() { close(); }

    int number() const noexcept { return mNumber; }
    bool isOpen() const noexcept { return mNumber >= 0; }
    /** False if the system could not keep what was written. */
    bool close() noexcept {
        const int number = std::exchange(mNumber, -1);
        return number < 0 || ::close(number) == 0 || errno == EINTR;
    }

private:
    int mNumber = -1;
};

/** What the system says about its last failure. */
inline std::string systemReason() {
    return std::strerror(errno);
}

}  // namespace lys::cli
