#include "Output.h"

#include "Failure.h"
#include "Process.h"

#include <lyr_core/LyrFileSaver.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace lys::cli {

namespace {

constexpr const char* STANDARD_OUTPUT = "-";

/** Writes all bytes; false with errno set when the system refuses. */
bool writeAll(int file, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return false;
        } else {
            checkInterrupted();
        }
    }
    return true;
}

std::string resolved(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? real.get() : path;
}

/** With its slash; empty for the working directory. */
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/** The permissions that a new file gets by the user's setting. */
mode_t newFileMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

Output::Output(const std::string& path) : mName(path == STANDARD_OUTPUT ? "standard output" : path) {
    struct stat status = {};
    if (path == STANDARD_OUTPUT) {
        mKind = Kind::Stream;
    } else if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) {
            fail("it is a folder; give the name of a file");
        }
        if (access(path.c_str(), W_OK) != 0) {
            fail(systemReason());
        }
        mExists = true;
        mTarget = resolved(path);
        mMode = status.st_mode & 07777;
        mKind = S_ISREG(status.st_mode) ? Kind::File : Kind::Stream;
    } else if (errno == ENOENT && !path.empty() && !path.ends_with('/')) {
        mTarget = path;
        mMode = newFileMode();
    } else {
        failBecauseOfSystem();
    }
    mKind == Kind::File ? openBeside() : openNameless();
}

Output::Output(Output&& other) noexcept
    : mName(std::move(other.mName)),
      mTarget(std::move(other.mTarget)),
      mTemporary(std::exchange(other.mTemporary, {})),
      mWork(std::move(other.mWork)),
      mFile(std::move(other.mFile)),
      mKind(other.mKind),
      mPlace(other.mPlace),
      mMode(other.mMode),
      mExists(other.mExists) {}

Output::~Output() {
    removeTemporary();
}

// The usual mistake is told in words of its own.
void Output::failBecauseOfSystem() const {
    fail(errno == ENOENT ? "its folder does not exist" : systemReason());
}

void Output::fail(const std::string& reason) const {
    throwFailed(mName + ": cannot be written: " + reason);
}

void Output::openBeside() {
    LyrFileSaver::sweepBeside(mTarget);
    mWork = WorkFolder::inside(folderOf(mTarget));
    if (!mWork) {
        failBecauseOfSystem();
    }
    std::string name = mWork->nextPath();
    mFile = Descriptor(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!mFile.isOpen()) {
        failBecauseOfSystem();
    }
    mTemporary = std::move(name);
    if (fchmod(mFile.number(), mMode) != 0) {
        fail(systemReason());
    }
}

void Output::openNameless() {
    const char* wanted = std::getenv("TMPDIR");
    const std::array<std::string, 3> folders = {wanted ? wanted : "", "/var/tmp", "/tmp"};
    for (const std::string& folder : folders) {
        if (folder.empty()) {
            continue;
        }
        mFile = Descriptor(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
        if (mFile.isOpen()) {
            return;
        }
        // Not every file system has files without a name.
        std::string name = folder + "/.colortable-XXXXXX";
        mFile = Descriptor(mkostemp(name.data(), O_CLOEXEC));
        if (mFile.isOpen()) {
            unlink(name.c_str());
            return;
        }
    }
    fail("there is no folder for temporary files (set TMPDIR): " + systemReason());
}

void Output::write(std::span<const std::byte> bytes) {
    checkInterrupted();
    if (!writeAll(mFile.number(), bytes)) {
        fail(systemReason());
    }
}

void Output::finish() {
    if (mKind == Kind::File && !mFile.close()) {
        fail(systemReason());
    }
}

void Output::commit(std::span<Output> outputs) {
    for (Output& output : outputs) {
        output.finish();
    }
    std::size_t placed = 0;
    try {
        for (; placed < outputs.size(); ++placed) {
            checkInterrupted();
            Output& output = outputs[placed];
            output.mKind == Kind::File ? output.place() : output.pourOut();
        }
    } catch (...) {
        while (placed > 0) {
            outputs[--placed].takeBack();
        }
        throw;
    }
    for (Output& output : outputs) {
        output.removeTemporary();
    }
}

// Exchanging keeps the old file under the temporary name, so that a later failure can bring it back. Not every file
// system can; there an old file is replaced for good.
void Output::place() {
    const unsigned int flags = mExists ? RENAME_EXCHANGE : RENAME_NOREPLACE;
    if (renameat2(AT_FDCWD, mTemporary.c_str(), AT_FDCWD, mTarget.c_str(), flags) == 0) {
        mPlace = mExists ? Place::Exchanged : Place::Created;
    } else if (rename(mTemporary.c_str(), mTarget.c_str()) == 0) {
        mPlace = mExists ? Place::Replaced : Place::Created;
    } else {
        fail(systemReason());
    }
    if (mPlace != Place::Exchanged) {
        mTemporary.clear();
    }
}

void Output::takeBack() noexcept {
    if (mPlace == Place::Exchanged) {
        static_cast<void>(rename(mTemporary.c_str(), mTarget.c_str()));
        mTemporary.clear();
    } else if (mPlace == Place::Created) {
        unlink(mTarget.c_str());
    }
}

void Output::removeTemporary() noexcept {
    if (!mTemporary.empty()) {
        unlink(mTemporary.c_str());
        mTemporary.clear();
    }
}

void Output::pourOut() {
    Descriptor device(mTarget.empty() ? dup(STDOUT_FILENO) : open(mTarget.c_str(), O_WRONLY | O_CLOEXEC));
    if (!device.isOpen() || lseek(mFile.number(), 0, SEEK_SET) != 0) {
        fail(systemReason());
    }
    std::array<std::byte, 65536> buffer;
    for (;;) {
        const ssize_t count = read(mFile.number(), buffer.data(), buffer.size());
        if (count == 0) {
            break;
        }
        if (count < 0 || !writeAll(device.number(), std::span(buffer).first(static_cast<std::size_t>(count)))) {
            fail(systemReason());
        }
    }
    if (!device.close()) {
        fail(systemReason());
    }
}

void printText(std::string_view text) {
    if (!writeAll(STDOUT_FILENO, std::as_bytes(std::span(text)))) {
        throwFailed("standard output: cannot be written: " + systemReason());
    }
}

}  // namespace lys::cli
