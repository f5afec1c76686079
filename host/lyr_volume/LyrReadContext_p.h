#pragma once

#include <string>
#include <utility>

#include <lyr_volume/LyrVolumeReader.h>

namespace lyrvolume {

/** Carries messages and progress of one reading. */
class ReadContext {
public:
    ReadContext(LyrVolumeReader::Report& report, const LyrVolumeReader::Progress& progress)
        : report_(report), progress_(progress) {}

    /** Notes why the reading failed and returns false, so that callers can `return context.fail(…)`. */
    bool fail(const std::string& place, const std::string& reason) {
        if (report_.error.empty()) {
            report_.error = place + ": " + reason;
        }
        return false;
    }

    void warn(const std::string& place, const std::string& what) { report_.warnings.push_back(place + ": " + what); }

    /** Tells how far the reading is; false when it is to stop. */
    bool advance(double fraction) {
        if (!progress_ || progress_(fraction)) {
            return true;
        }
        report_.cancelled = true;
        report_.error = "reading was cancelled";
        return false;
    }

private:
    LyrVolumeReader::Report& report_;
    const LyrVolumeReader::Progress& progress_;
};

/** What a format reader hands over: the description and the samples of the first frame. */
struct Draft {
    LyrVolume::Description description;
    std::vector<float> samples;
};

}  // namespace lyrvolume
