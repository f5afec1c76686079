#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectFile.h>

#include "fuzz/FuzzTargets.h"

namespace {

using Report = LyrObjectFile::Report;

std::string written(const LyrObject& object) {
    std::string text;
    fuzz::require(LyrObjectFile::write(object, text), "what was read can be written");
    return text;
}

/** What was read is written in a form that reads and writes back to the same bytes. */
void checkWriting(const LyrObject& object) {
    const std::string first = written(object);
    LyrObjectPtr again;
    Report report;
    fuzz::require(LyrObjectFile::read(first, again, report, {}, Lyr::TransientScope), "what was written can be read");
    fuzz::require(again.get() && written(*again) == first, "what was written and read is written the same");
}

void colour(const LyrObject& object) {
    if (!object.getMetaClass().isOfType("LyrColorLookupTable")) {
        return;
    }
    const float values[] = {-2.0F, -1.0F, 0.0F, 0.3F, 1.0F, 1e30F};
    LyrRGBA<float> colors[std::size(values)];
    static_cast<const LyrColorLookupTable&>(object).getColors(std::size(values), values, colors);
}

void readIntoTable(const std::string& text) {
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::TransientScope);
    static const std::string before = written(*table.get());
    Report report;
    if (!LyrObjectFile::readInto(text, *table.get(), report)) {
        fuzz::require(!report.message.isEmpty(), "a refusal has a message");
        fuzz::require(written(*table.get()) == before, "a refused file changes nothing");
    }
}

}  // namespace

void fuzz::objectFile(Bytes bytes) {
    const std::string text = textOf(bytes);
    LyrObjectPtr object;
    Report report;
    const bool read = LyrObjectFile::read(text, object, report, {}, Lyr::TransientScope);
    require(read == bool(object.get()), "there is an object exactly when the file was read");
    require(read || !report.message.isEmpty(), "a refusal has a message");
    if (read) {
        checkWriting(*object);
        colour(*object);
    }
    readIntoTable(text);
}
