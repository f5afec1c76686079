#include "WorkFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <map>
#include <string_view>

namespace lys::cli {

namespace {

constexpr std::string_view PREFIX = ".colortable-";
constexpr std::string_view SUFFIX = ".tmp";

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

/** .colortable-<digits>-<digits>.tmp */
bool isOurName(std::string_view name) {
    if (!name.starts_with(PREFIX) || !name.ends_with(SUFFIX) || name.size() <= PREFIX.size() + SUFFIX.size()) {
        return false;
    }
    name.remove_prefix(PREFIX.size());
    name.remove_suffix(SUFFIX.size());
    const std::size_t dash = name.find('-');
    return dash != 0 && dash != std::string_view::npos && dash + 1 < name.size() &&
           name.find_first_not_of("0123456789") == dash &&
           name.find_first_not_of("0123456789", dash + 1) == std::string_view::npos;
}

int tryLock(int file) {
    int result = 0;
    do {
        result = flock(file, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

/** Whether a name in a folder still stands for an open one. */
bool isStillNamed(int parent, const char* name, int open) {
    struct stat named = {};
    struct stat opened = {};
    return fstatat(parent, name, &named, AT_SYMLINK_NOFOLLOW) == 0 && fstat(open, &opened) == 0 &&
           named.st_ino == opened.st_ino && named.st_dev == opened.st_dev;
}

Descriptor openFolder(int parent, const char* name) {
    return Descriptor(openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

/** Removes the files of a folder, and nothing that is not a file. */
void removeFiles(int folder) {
    const int copy = dup(folder);
    const std::unique_ptr<DIR, CloseFolder> entries(copy < 0 ? nullptr : fdopendir(copy));
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
        unlinkat(folder, entry->d_name, 0);
    }
}

}  // namespace

void WorkFolder::sweep(const std::string& folder) {
    const std::unique_ptr<DIR, CloseFolder> entries(opendir(folder.empty() ? "." : folder.c_str()));
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
        if (!isOurName(entry->d_name)) {
            continue;
        }
        const int parent = dirfd(entries.get());
        const Descriptor left = openFolder(parent, entry->d_name);
        if (left.isOpen() && tryLock(left.number()) == 0 && isStillNamed(parent, entry->d_name, left.number())) {
            removeFiles(left.number());
            unlinkat(parent, entry->d_name, AT_REMOVEDIR);
        }
    }
}

std::shared_ptr<WorkFolder> WorkFolder::inside(const std::string& folder) {
    static std::map<std::string, std::weak_ptr<WorkFolder>> used;
    std::shared_ptr<WorkFolder> found = used[folder].lock();
    if (!found) {
        sweep(folder);
        found = make(folder);
        used[folder] = found;
    }
    return found;
}

std::shared_ptr<WorkFolder> WorkFolder::make(const std::string& folder) {
    constexpr int mostTries = 1000;
    static int count = 0;
    for (int i = 0; i < mostTries; ++i) {
        std::string path = folder + std::string(PREFIX) + std::to_string(getpid()) + '-' + std::to_string(count++) +
                           std::string(SUFFIX);
        if (mkdir(path.c_str(), 0700) != 0) {
            if (errno == EEXIST) {
                continue;
            }
            return nullptr;
        }
        Descriptor lock = openFolder(AT_FDCWD, path.c_str());
        const int error = lock.isOpen() ? tryLock(lock.number()) : errno;
        // A sweep may come between making and locking it.
        if (lock.isOpen() && error != EWOULDBLOCK && isStillNamed(AT_FDCWD, path.c_str(), lock.number())) {
            return std::make_shared<WorkFolder>(std::move(path), std::move(lock));
        }
        if (error != 0 && error != EWOULDBLOCK && error != ENOENT) {
            rmdir(path.c_str());
            errno = error;
            return nullptr;
        }
    }
    errno = EEXIST;
    return nullptr;
}

WorkFolder::~WorkFolder() {
    rmdir(mPath.c_str());
}

std::string WorkFolder::nextPath() {
    return mPath + '/' + std::to_string(mCount++);
}

}  // namespace lys::cli
