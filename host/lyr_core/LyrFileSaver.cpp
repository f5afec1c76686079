#include <lyr_core/LyrFileIo_p.h>
#include <lyr_core/LyrFileSaver.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <atomic>
#include <cerrno>
#include <memory>

// A temporary file is locked (flock) by its saver from its first moment to its last. The system takes the lock away
// when the process dies, however that happens, and a lock holds across containers and machines where process numbers
// mean nothing: a leftover whose lock can be had belongs to nobody.

namespace {

constexpr std::string_view PREFIX = ".lyr-save-";
constexpr std::string_view SUFFIX = ".tmp";

/** A name for a temporary file that this process has not used yet: process number and a count. */
std::string nextName() {
    static std::atomic<unsigned long> count{0};
    return std::string(PREFIX) + std::to_string(::getpid()) + '-' + std::to_string(count.fetch_add(1)) +
           std::string(SUFFIX);
}

bool isOurName(std::string_view name) {
    // The two cannot overlap: neither begins as the other ends.
    if (!name.starts_with(PREFIX) || !name.ends_with(SUFFIX)) {
        return false;
    }
    const std::string_view middle = name.substr(PREFIX.size(), name.size() - PREFIX.size() - SUFFIX.size());
    const auto dash = middle.find('-');
    if (dash == std::string_view::npos || dash == 0 || dash + 1 == middle.size()) {
        return false;
    }
    const auto isNumber = [](std::string_view text) {
        return text.find_first_not_of("0123456789") == std::string_view::npos;
    };
    return isNumber(middle.substr(0, dash)) && isNumber(middle.substr(dash + 1));
}

/** Takes a lock if nobody has it. Gives 0, EWOULDBLOCK if somebody has it, or the error. */
int tryLock(int file, int kind) noexcept {
    int result = 0;
    do {
        result = ::flock(file, kind | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

bool locksAreMissing(int error) {
    return error == ENOLCK || error == EOPNOTSUPP || error == ENOSYS;
}

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/** fsync() of a file or folder; file systems that cannot flush a folder say EINVAL. */
bool flush(int file, bool isFolder) noexcept {
    int result = 0;
    do {
        result = ::fsync(file);
    } while (result != 0 && errno == EINTR);
    return result == 0 || (isFolder && errno == EINVAL);
}

/** Follows symbolic links to the file that they lead to, which need not exist. Gives 0 or an error. */
int followLinks(std::string& path) {
    constexpr int mostLinks = 40;  // as the system itself allows
    for (int i = 0; i <= mostLinks; ++i) {
        std::string link(4096, '\0');
        const ssize_t length = ::readlink(path.c_str(), link.data(), link.size());
        if (length < 0) {
            return errno == EINVAL || errno == ENOENT ? 0 : errno;
        }
        link.resize(static_cast<std::size_t>(length));
        const auto slash = path.rfind('/');
        const bool isRelative = !link.starts_with('/') && slash != std::string::npos;
        path.replace(isRelative ? slash + 1 : 0, std::string::npos, link);
    }
    return ELOOP;
}

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

/** One replacement of one file. Whatever it has left behind when it ends is removed. */
class Replacement {
public:
    explicit Replacement(const std::string& path) : mPath(path) {}
    ~Replacement() {
        if (!mTempName.empty()) {
            ::unlinkat(mFolder.get(), mTempName.c_str(), 0);
        }
        if (!mBackupName.empty()) {
            ::unlinkat(mFolder.get(), mBackupName.c_str(), 0);
        }
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    const std::string& reason() const noexcept { return mReason; }

    bool run(std::string_view content) {
        return findTarget() && openFolder() && examineOldFile() && createTemporary() && keepPermissions() &&
               fill(content) && keepOldFile() && exchange();
    }

private:
    bool fail(const std::string& what, int error = 0) {
        mReason = what + (error ? ": " + lyrErrorText(error) : "");
        return false;
    }

    bool findTarget() {
        if (mPath.find('\0') != std::string::npos) {
            return fail("the path holds the character 0");
        }
        std::string target = mPath;
        const int error = followLinks(target);
        return error == 0 ? splitPath(target) : fail("the path cannot be followed", error);
    }

    bool splitPath(const std::string& target) {
        mFolderName = folderOf(target);
        mName = target.substr(target.rfind('/') + 1);  // all of it where there is no slash
        return (!mName.empty() && mName != "." && mName != "..") || fail("the path names no file");
    }

    bool openFolder() {
        mFolder = lyrOpenAt(AT_FDCWD, mFolderName, O_RDONLY | O_DIRECTORY);
        return mFolder || fail("the folder cannot be opened", errno);
    }

    bool examineOldFile() {
        if (::fstatat(mFolder.get(), mName.c_str(), &mOld, AT_SYMLINK_NOFOLLOW) != 0) {
            return errno == ENOENT || fail("the present file cannot be examined", errno);
        }
        if (!S_ISREG(mOld.st_mode)) {
            return fail(S_ISDIR(mOld.st_mode) ? "this is a folder, not a file" : "this is no ordinary file");
        }
        mHasOld = true;
        if (::faccessat(mFolder.get(), mName.c_str(), W_OK, AT_EACCESS) != 0) {
            return fail("the present file may not be written", errno);
        }
        // The lock marks the second name, which keepOldFile() gives it, as in use.
        mOldFile = lyrOpenAt(mFolder.get(), mName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
        if (!mOldFile) {
            return errno == EACCES || fail("the present file cannot be opened", errno);
        }
        const int error = tryLock(mOldFile.get(), LOCK_SH);
        return error == 0 || error == EWOULDBLOCK || locksAreMissing(error) ||
               fail("the present file cannot be locked", error);
    }

    bool createTemporary() {
        constexpr int mostTries = 1000;
        for (int i = 0; i < mostTries; ++i) {
            std::string name = nextName();
            mTemp = lyrOpenAt(mFolder.get(), name, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, mHasOld ? 0600 : 0666);
            if (!mTemp && errno == EEXIST) {
                continue;
            }
            if (!mTemp) {
                return fail("no file can be made in the folder", errno);
            }
            mTempName = std::move(name);
            const int error = tryLock(mTemp.get(), LOCK_EX);
            if (error != 0 && error != EWOULDBLOCK && !locksAreMissing(error)) {
                return fail("the temporary file cannot be locked", error);
            }
            if (::fstat(mTemp.get(), &mNew) != 0) {
                return fail("the temporary file cannot be examined", errno);
            }
            if (error != EWOULDBLOCK && mNew.st_nlink > 0) {
                return true;
            }
            // A sweep came between making and locking it, and removes it.
        }
        return fail("no file can be made in the folder: too many leftovers");
    }

    bool keepPermissions() {
        if (!mHasOld) {
            return true;
        }
        mode_t mode = mOld.st_mode & 07777;
        const bool differs = mNew.st_uid != mOld.st_uid || mNew.st_gid != mOld.st_gid;
        if (differs && ::fchown(mTemp.get(), mOld.st_uid, mOld.st_gid) != 0 &&
            ::fchown(mTemp.get(), static_cast<uid_t>(-1), mOld.st_gid) != 0) {
            // The file's group is another now: it gets no more than everybody has.
            mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3);
        }
        return ::fchmod(mTemp.get(), mode) == 0 || fail("the permissions cannot be kept", errno);
    }

    bool fill(std::string_view content) {
        if (!lyrWriteAll(mTemp.get(), content)) {
            return fail("the file cannot be written", errno);
        }
        if (!flush(mTemp.get(), false)) {
            return fail("the file cannot be flushed to the disk", errno);
        }
        if (!lyrHoldsExactly(mTemp.get(), content)) {
            const int error = errno;
            return error ? fail("the file cannot be read back", error)
                         : fail("what was written reads back differently; the disk may be failing");
        }
        return true;
    }

    /** Gives the old file a second name, so that it can come back if something fails late. */
    bool keepOldFile() {
        if (!mHasOld) {
            return true;
        }
        mBackupName = nextName();
        while (::linkat(mFolder.get(), mName.c_str(), mFolder.get(), mBackupName.c_str(), 0) != 0) {
            const int error = errno;
            if (error == EEXIST) {
                mBackupName = nextName();
                continue;
            }
            mBackupName.clear();
            const bool impossible = error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
            return impossible || error == ENOENT || fail("the present file cannot be kept", error);
        }
        return true;
    }

    bool exchange() {
        if (::renameat(mFolder.get(), mTempName.c_str(), mFolder.get(), mName.c_str()) != 0) {
            return fail("the file cannot be put in its place", errno);
        }
        mTempName.clear();
        if (!flush(mFolder.get(), true)) {
            return takeBack("the folder cannot be flushed to the disk", errno);
        }
        if (!mTemp.close()) {
            return takeBack("the file cannot be closed", errno);
        }
        if (!mBackupName.empty() && ::unlinkat(mFolder.get(), mBackupName.c_str(), 0) != 0 && errno != ENOENT) {
            return takeBack("the old file cannot be removed", errno);
        }
        mBackupName.clear();
        return true;
    }

    /** Brings the state before exchange() back, unless somebody else has replaced the file since. */
    bool takeBack(const std::string& what, int error) {
        fail(what, error);
        struct stat present {};
        const bool isOurs =
            ::fstatat(mFolder.get(), mName.c_str(), &present, AT_SYMLINK_NOFOLLOW) == 0 && isSameFile(present, mNew);
        bool isBack = false;
        if (isOurs && !mBackupName.empty()) {
            isBack = ::renameat(mFolder.get(), mBackupName.c_str(), mFolder.get(), mName.c_str()) == 0;
            mBackupName = isBack ? std::string() : mBackupName;
        } else if (isOurs && !mHasOld) {
            isBack = ::unlinkat(mFolder.get(), mName.c_str(), 0) == 0;
        }
        if (isBack) {
            flush(mFolder.get(), true);
        } else {
            mReason += "; the new file is in place, but may be lost in a power failure: save again";
        }
        return false;
    }

    std::string mPath;
    std::string mReason;
    std::string mFolderName;
    std::string mName;
    std::string mTempName;
    std::string mBackupName;
    LyrFileHandle mFolder;
    LyrFileHandle mOldFile;
    LyrFileHandle mTemp;
    struct stat mOld {};
    struct stat mNew {};
    bool mHasOld = false;
};

/** Removes a leftover if nobody uses it. */
bool sweepOne(int folder, const std::string& name) {
    const LyrFileHandle file = lyrOpenAt(folder, name, O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    struct stat locked {};
    struct stat named {};
    if (!file || ::fstat(file.get(), &locked) != 0 || !S_ISREG(locked.st_mode) || tryLock(file.get(), LOCK_EX) != 0) {
        return false;
    }
    // Between opening and locking its saver may have finished.
    return ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && isSameFile(locked, named) &&
           ::unlinkat(folder, name.c_str(), 0) == 0;
}

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
};

}  // namespace

bool LyrFileSaver::replace(const std::string& path, std::string_view content, LyrString* message) {
    LyrString reason;
    try {
        Replacement replacement(path);
        if (replacement.run(content)) {
            return true;
        }
        reason = LyrString(replacement.reason());
    } catch (...) {
        reason = lyrOutOfMemoryText();
    }
    if (!message) {
        return false;
    }
    try {
        *message = LyrString(path.substr(0, path.find('\0')) + ": not saved: ") + reason;
    } catch (...) {
        *message = std::move(reason);
    }
    return false;
}

int LyrFileSaver::sweepLeftovers(const std::string& folder) {
    const std::unique_ptr<DIR, CloseFolder> open(::opendir(folder.c_str()));
    int count = 0;
    while (const dirent* entry = open ? ::readdir(open.get()) : nullptr) {
        if (isOurName(entry->d_name) && sweepOne(::dirfd(open.get()), entry->d_name)) {
            ++count;
        }
    }
    return count;
}

int LyrFileSaver::sweepBeside(const std::string& path) {
    try {
        std::string target = path;
        return followLinks(target) == 0 ? sweepLeftovers(folderOf(target)) : 0;
    } catch (...) {
        return 0;  // without memory: a later sweep finds them
    }
}
