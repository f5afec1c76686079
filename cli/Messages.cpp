#include "Messages.h"

#include <unistd.h>

#include <chrono>
#include <string>

namespace lys::cli {

namespace {

constexpr double SECONDS_BETWEEN_UPDATES = 0.1;
constexpr std::string_view WIPE_LINE = "\r\033[K";

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/** One write for a line, so that lines of several processes do not mix. Nobody can be told if it fails. */
void writeError(const std::string& text) noexcept {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

void writeLine(std::string_view begin, std::string_view text) noexcept {
    try {
        writeError(std::string(begin).append(text).append("\n"));
    } catch (...) {
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
    }
}

}  // namespace

void printError(std::string_view text) noexcept {
    writeLine("colortable: ", text);
}

void warn(std::string_view text) noexcept {
    writeLine("colortable: warning: ", text);
}

// The first line waits like every other, so that short work shows nothing.
Progress::Progress(std::string_view what) : mWhat(what), mTerminal(isatty(STDERR_FILENO) == 1), mLastTime(now()) {}

Progress::~Progress() {
    if (mShown) {
        writeError(std::string(WIPE_LINE));
    }
}

void Progress::show(double done, double total) {
    if (!mTerminal || now() - mLastTime < SECONDS_BETWEEN_UPDATES) {
        return;
    }
    mLastTime = now();
    mShown = true;
    const std::string amount = total > 0 ? std::to_string(static_cast<long long>(100.0 * done / total)) + " %"
                                         : std::to_string(static_cast<long long>(done));
    writeError(std::string(WIPE_LINE).append(mWhat).append(" ").append(amount));
}

}  // namespace lys::cli
