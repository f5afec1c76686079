#include "Process.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace lys::cli {

namespace {

volatile std::sig_atomic_t askedToEnd = 0;

extern "C" void rememberSignal(int number) {
    askedToEnd = number;
}

/** A stream that was closed is opened the wrong way round: using it is still an error, and its number is taken. */
void occupy(int stream, int flags) {
    if (fcntl(stream, F_GETFD) == -1) {
        // open() gives the lowest free number, and the streams are looked at in order.
        static_cast<void>(open("/dev/null", flags));
    }
}

}  // namespace

void prepareProcess() {
    occupy(STDIN_FILENO, O_WRONLY);
    occupy(STDOUT_FILENO, O_RDONLY);
    occupy(STDERR_FILENO, O_WRONLY);
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN) {
            continue;  // as under nohup
        }
        action = {};
        action.sa_handler = rememberSignal;
        // One more request ends at once; without SA_RESTART a read that waits comes back.
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(number, &action, nullptr);
    }
}

bool isInterrupted() noexcept {
    return askedToEnd != 0;
}

void checkInterrupted() {
    if (isInterrupted()) {
        throw Interrupted();
    }
}

void endByInterrupt() {
    const int number = askedToEnd;
    std::signal(number, SIG_DFL);
    std::raise(number);
    std::_Exit(128 + number);
}

}  // namespace lys::cli
