#include <workbench/app/VirtualDisplay.h>

#include <QByteArray>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

namespace workbench {

namespace {

/** How long a server may take to be ready, in milliseconds: it starts in a fraction of a second. */
constexpr int LONGEST_START = 20000;

/** What the server writes when it is ready: the number of its display. Empty if it ends or takes too long. */
std::string readNumber(int fd) {
    std::string number;
    char c = 0;
    pollfd ready{fd, POLLIN, 0};
    while (poll(&ready, 1, LONGEST_START) == 1 && read(fd, &c, 1) == 1 && c != '\n') {
        number += c;
    }
    return c == '\n' ? number : std::string();
}

}  // namespace

VirtualDisplay::~VirtualDisplay() {
    if (mServer > 0) {
        kill(mServer, SIGTERM);
        waitpid(mServer, nullptr, 0);
    }
}

bool VirtualDisplay::start(const QSize& screen) {
    int ends[2];
    if (pipe(ends) != 0) {
        return false;
    }
    const std::string fd = std::to_string(ends[1]);
    const std::string size = std::to_string(screen.width()) + 'x' + std::to_string(screen.height()) + "x24";
    mServer = fork();
    if (mServer == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        close(ends[0]);
        // It warns of keyboards there; that it does not start is told by the caller.
        if (const int nowhere = open("/dev/null", O_RDWR); nowhere >= 0) {
            dup2(nowhere, STDERR_FILENO);
        }
        // The server chooses a display that is free.
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", size.c_str(), "-nolisten", "tcp", nullptr);
        _exit(127);
    }
    close(ends[1]);
    const std::string number = readNumber(ends[0]);
    close(ends[0]);
    return !number.empty() && qputenv("DISPLAY", QByteArray(":") + number.c_str());
}

}  // namespace workbench
