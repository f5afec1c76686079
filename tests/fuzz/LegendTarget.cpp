#include "cli/Failure.h"
#include "cli/LegendSettings.h"
#include "fuzz/FuzzTargets.h"

#include <colortable/legend/LegendPicture.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqUnitConverter.h>

#include <sstream>

void fuzz::fontString(Bytes bytes) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
    bool valid = false;
    const QFont font = lys::legend::fontFromString(text, &valid);
    require(font.pointSizeF() > 0.0 || font.pixelSize() > 0, "a font has a size");
    lys::legend::fontFromString(font.toString(), &valid);
    require(valid, "what the toolkit writes for a font is a font description");
}

/** Each line is a NAME=VALUE of the option --set. */
void fuzz::legendSettings(Bytes bytes) {
    std::vector<std::string> replacements;
    std::istringstream lines(textOf(bytes));
    for (std::string line; std::getline(lines, line);) {
        replacements.push_back(line);
    }
    LyrObjectPtr settings;
    try {
        settings = lys::cli::readLegendSettings({}, replacements);
    } catch (const lys::cli::Failure& failure) {
        require(failure.status() == lys::cli::ExitStatus::Unusable && failure.what()[0] != '\0',
                "a refused replacement is told");
        return;
    }
    static LyqUnitConverter converter(Lyr::Length);
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::TransientScope);
    lys::legend::read(table.get(), settings.get(), converter, QSize(200, 100), 96.0F);
    std::string text;
    LyrObjectFile::write(*settings, text);
}
