#pragma once

#include <analysis/LysAnalysisExport.h>

#include <cstdint>

namespace LYQANALYSIS {

/** Brings the library to life inside a host. Loading it registers its identifiers and classes; init(), called once by
 * each user, offers its layers to the host's window and its legends to every view, and cleanup() takes them back with
 * the last user. */
class LYS_ANALYSIS_EXPORT LibraryInit {
public:
    LibraryInit() = default;
    ~LibraryInit();
    LibraryInit(const LibraryInit&) = delete;
    LibraryInit& operator=(const LibraryInit&) = delete;

    static void init();
    static void cleanup();

private:
    void install();
    void remove();

    std::int64_t mUseCount = 0;
};

}  // namespace LYQANALYSIS
