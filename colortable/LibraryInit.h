#pragma once

#include <colortable/LysColortableExport.h>
#include <toolkit/QGuardedPtr.h>

#include <QObject>

#include <cstdint>
#include <memory>

class LyrColorTableCameraRoleHook;
class LyrColorTableWorkspaceWidgetPreparations;

namespace LYQCOLORTABLE {

/** Brings the library to life inside a host. Loading the library registers its identifiers and classes; init(), called
 * once by each user of the library, installs what it contributes to the whole application, and cleanup() takes it back
 * with the last user. */
class LYS_COLORTABLE_EXPORT LibraryInit {
public:
    LibraryInit();
    ~LibraryInit();
    LibraryInit(const LibraryInit&) = delete;
    LibraryInit& operator=(const LibraryInit&) = delete;

    /** Counts one more user; only the count of exactly 1 installs anything. */
    static void init();
    /** Counts one user less; only the step from exactly 1 removes anything. The count may fall below zero. */
    static void cleanup();

private:
    void _init();
    void _cleanup();

    std::int64_t mUseCount;
    std::unique_ptr<LyrColorTableWorkspaceWidgetPreparations> mPreparations;
    std::unique_ptr<LyrColorTableCameraRoleHook> mCameraRoleHook;
    QGuardedPtr<QObject> mGuarded;
};

}  // namespace LYQCOLORTABLE
