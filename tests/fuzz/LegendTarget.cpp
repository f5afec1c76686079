#include "cli/Failure.h"
#include "cli/LegendSettings.h"
#include "fuzz/ObjectChecks.h"

#include <colortable/LibraryInit.h>
#include <colortable/legend/LegendPicture.h>
#include <lys_core/LyqUnitConverter.h>

#include <QGuiApplication>

#include <sstream>

fuzz::Accepted fuzz::fontString(Bytes bytes) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
    bool valid = false;
    const QFont font = lys::legend::fontFromString(text, &valid);
    require(font.pointSizeF() > 0.0 || font.pixelSize() > 0, "a font has a size");
    require(valid || font == QGuiApplication::font(), "what is no font gives the application's");
    bool validAgain = false;
    const QFont again = lys::legend::fontFromString(font.toString(), &validAgain);
    require(validAgain, "what the toolkit writes for a font is a font description");
    require(again == font, "a font that is written and read is the same");
    return bitIf(valid, 0);
}

/** Each line is a NAME=VALUE of the option --set. */
fuzz::Accepted fuzz::legendSettings(Bytes bytes) {
    // Registers the placeholders of captions.
    [[maybe_unused]] static const bool ready = (LYQCOLORTABLE::LibraryInit::init(), true);
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
        return 0;
    }
    static LyqUnitConverter converter(Lyr::Length);
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::TransientScope);
    lys::legend::read(table.get(), settings.get(), converter, QSize(200, 100), 96.0F);
    checkWriting(*settings);
    return bitIf(!replacements.empty(), 0);
}
