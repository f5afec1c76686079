#include "VolumeSource.h"

#include "Failure.h"
#include "Messages.h"
#include "Process.h"

#include <lyr_volume/LyrVolumeReader.h>

namespace lys::cli {

bool isBuiltInVolume(const std::string& name) {
    return name.starts_with("builtin:");
}

std::shared_ptr<const LyrVolume> readVolume(const std::string& pathOrName) {
    std::shared_ptr<const LyrVolume> volume;
    LyrVolumeReader::Report report;
    bool done = false;
    {
        Progress progress("reading");
        done = LyrVolumeReader::read(pathOrName, volume, report, [&](double part) {
            progress.show(part, 1.0);
            return !isInterrupted();
        });
    }
    checkInterrupted();
    for (const std::string& warning : report.warnings) {
        warn(warning);
    }
    if (!done || !volume) {
        throwUnusable(report.error);
    }
    return volume;
}

}  // namespace lys::cli
