#include "TableOutput.h"

#include "Failure.h"
#include "Output.h"

#include <lyr_core/LyrObjectFile.h>

namespace lys::cli {

void writeObject(const LyrObject& object, const std::string& path) {
    if (path == "-") {
        std::string text;
        LyrString message;
        if (!LyrObjectFile::write(object, text, &message)) {
            throwFailed(message.utf8());
        }
        printText(text);
        return;
    }
    LyrObjectFile::Report report;
    if (!LyrObjectFile::save(object, path, report)) {
        throwFailed(report.message.utf8());
    }
}

}  // namespace lys::cli
