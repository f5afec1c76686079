#include "TableOutput.h"

#include "Failure.h"
#include "Output.h"
#include "WorkFolder.h"

#include <lyr_core/LyrFileSaver.h>
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
    LyrFileSaver::sweepBeside(path);
    WorkFolder::sweep(path.substr(0, path.rfind('/') + 1));
    LyrObjectFile::Report report;
    if (!LyrObjectFile::save(object, path, report)) {
        throwFailed(report.message.utf8());
    }
}

}  // namespace lys::cli
