#pragma once

#include "Descriptor.h"

#include <memory>
#include <string>

namespace lys::cli {

/** A hidden folder for what is not finished, inside the folder in which it will be shown. It is locked (flock) while it
 * is used: the system takes the lock away from a process that dies, and the next one sweeps what nobody has locked. */
class WorkFolder {
public:
    /** The one of this process inside a folder ("" for the working directory), which is swept when the first is made.
     * Null, with errno set, if there can be none. */
    static std::shared_ptr<WorkFolder> inside(const std::string& folder);

    /** Removes what processes that were killed have left inside a folder. */
    static void sweep(const std::string& folder);

    WorkFolder(std::string path, Descriptor lock) : mPath(std::move(path)), mLock(std::move(lock)) {}
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;
    /** Removes it. It is empty then. */
    ~WorkFolder();

    /** A path inside that was not used yet. */
    std::string nextPath();

private:
    static std::shared_ptr<WorkFolder> make(const std::string& folder);

    std::string mPath;
    Descriptor mLock;
    int mCount = 0;
};

}  // namespace lys::cli
