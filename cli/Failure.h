#pragma once

#include <stdexcept>
#include <string>

namespace lys::cli {

/** What the program ends with. Failed and Unusable leave standard output empty and every output file as it was. */
enum class ExitStatus {
    Done = 0,
    Failed = 1,    ///< the operation failed: a colour could not be formed, an output could not be written
    Unusable = 2,  ///< wrong usage, or input that cannot be used
};

/** Ends a command. The message says what went wrong, where, and what to do. */
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message) : std::runtime_error(message), mStatus(status) {}
    ExitStatus status() const noexcept { return mStatus; }

private:
    ExitStatus mStatus;
};

[[noreturn]] inline void throwFailed(const std::string& message) {
    throw Failure(ExitStatus::Failed, message);
}
[[noreturn]] inline void throwUnusable(const std::string& message) {
    throw Failure(ExitStatus::Unusable, message);
}

}  // namespace lys::cli
