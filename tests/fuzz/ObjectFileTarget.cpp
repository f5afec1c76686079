#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrMetaClass.h>

#include "fuzz/ObjectChecks.h"

namespace {

using Report = LyrObjectFile::Report;

void colour(const LyrObject& object) {
    if (!object.getMetaClass().isOfType("LyrColorLookupTable")) {
        return;
    }
    const float values[] = {-2.0F, -1.0F, 0.0F, 0.3F, 1.0F, 1e30F};
    LyrRGBA<float> colors[std::size(values)];
    static_cast<const LyrColorLookupTable&>(object).getColors(std::size(values), values, colors);
}

bool readIntoTable(const std::string& text) {
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::TransientScope);
    static const std::string before = fuzz::written(*table.get());
    Report report;
    const bool read = LyrObjectFile::readInto(text, *table.get(), report);
    if (!read) {
        fuzz::require(!report.message.isEmpty(), "a refusal has a message");
        fuzz::require(fuzz::written(*table.get()) == before, "a refused file changes nothing");
    }
    return read;
}

}  // namespace

fuzz::Accepted fuzz::objectFile(Bytes bytes) {
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
    return bitIf(read, 0) | bitIf(readIntoTable(text), 1);
}
