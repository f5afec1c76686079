#include "Commands.h"
#include "Failure.h"
#include "GuiSession.h"
#include "LegendPicture.h"
#include "LegendSettings.h"
#include "Numbers.h"
#include "Output.h"
#include "TableSource.h"

#include <colortable/LibraryInit.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyrApplicationObject.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <memory>
#include <optional>
#include <span>

namespace lys::cli {

namespace {

/** Pictures beyond this are a typing error. */
constexpr std::int64_t LARGEST_SIDE = 32767;
constexpr std::int64_t LARGEST_AREA = std::int64_t(1) << 27;
constexpr float LARGEST_RESOLUTION = 9600.0f;

struct LegendOptions {
    std::string table;
    std::string settings;
    std::vector<std::string> replacements;
    std::string size;
    std::string dotsPerInch;
    std::string unit;
    std::string locale;
    std::string output;
    bool describe = false;
};

/** A user of the library: the placeholders of captions are there while it lives. */
class LibraryUse {
public:
    LibraryUse() { LYQCOLORTABLE::LibraryInit::init(); }
    ~LibraryUse() { LYQCOLORTABLE::LibraryInit::cleanup(); }
    LibraryUse(const LibraryUse&) = delete;
    LibraryUse& operator=(const LibraryUse&) = delete;
};

QSize parseSize(const std::string& text) {
    const std::vector<std::string_view> sides = splitText(text, 'x');
    std::int64_t numbers[2] = {0, 0};
    for (std::size_t i = 0; sides.size() == 2 && i < 2; ++i) {
        numbers[i] = parseCount(sides[i]).value_or(0);
    }
    const bool inRange = numbers[0] >= 1 && numbers[0] <= LARGEST_SIDE && numbers[1] >= 1 && numbers[1] <= LARGEST_SIDE;
    if (!inRange || numbers[0] * numbers[1] > LARGEST_AREA) {
        throwUnusable("--size " + text + ": give WIDTHxHEIGHT in pixels, each from 1 to " +
                      std::to_string(LARGEST_SIDE) + ", together at most " + std::to_string(LARGEST_AREA) + " pixels");
    }
    return QSize(static_cast<int>(numbers[0]), static_cast<int>(numbers[1]));
}

/** 0, the application's default, when nothing is given. */
float parseResolution(const std::string& text) {
    if (text.empty()) {
        return 0.0f;
    }
    const std::optional<float> resolution = parseFloat(text);
    if (!resolution || *resolution < 0.0f || *resolution > LARGEST_RESOLUTION) {
        throwUnusable("--dpi " + text + ": give the dots per inch, from 1 to 9600");
    }
    return *resolution;
}

void chooseUnit(const std::string& unit, const LyrObject& table) {
    if (unit.empty()) {
        return;
    }
    const Lyrenum quantity = lyrGetValue(&table, Lyr::Quantity, Lyr::Length);
    const Lyrenum found = LyrQuantity::findUnit(quantity, LyrString::fromUtf8(unit.c_str()));
    if (!LyqApplication::instance().displayUnits().setDisplayUnit(quantity, found)) {
        throwUnusable("--unit " + unit + ": this is no unit of the table's quantity");
    }
}

/** Shows picture and description together, or neither. */
void showOutputs(const LegendPicture& picture, const LegendOptions& options) {
    std::vector<Output> outputs;
    outputs.reserve(2);
    if (!options.output.empty()) {
        const QByteArray bytes = picture.encode(options.output);
        outputs.emplace_back(options.output);
        outputs.back().write(std::as_bytes(std::span(bytes.constData(), static_cast<std::size_t>(bytes.size()))));
    }
    if (options.describe) {
        const std::string text = picture.toJson();
        outputs.emplace_back("-");
        outputs.back().write(std::as_bytes(std::span(text)));
    }
    Output::commit(outputs);
}

void runLegend(const LegendOptions& options) {
    if (options.output.empty() && !options.describe) {
        throwUnusable("legend: give an output with -o, or --describe");
    }
    const QSize size = parseSize(options.size);
    const float resolution = parseResolution(options.dotsPerInch);
    const GuiSession session(options.locale);
    const LibraryUse library;
    const TableSource source(options.table);
    const LyrObjectPtr settings = readLegendSettings(options.settings, options.replacements);
    chooseUnit(options.unit, source.table());
    showOutputs(LegendPicture(&source.table(), settings, size, resolution), options);
}

}  // namespace

void addLegendCommand(CLI::App& program) {
    const auto options = std::make_shared<LegendOptions>();
    CLI::App* command = program.add_subcommand("legend", "Paint the colour bar legend of a table");
    command->add_option("--table", options->table, "The table: a file, else the name of a preset")
        ->required()
        ->type_name("TABLE");
    command->add_option("--settings", options->settings, "File of render settings; without it their defaults")
        ->type_name("FILE");
    command->add_option("--set", options->replacements, "Replaces one property of the settings, e.g. Position=Bottom")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command->add_option("--size", options->size, "Size of the picture in pixels")->required()->type_name("WxH");
    command->add_option("--dpi", options->dotsPerInch, "Dots per inch that lengths and fonts are scaled to (96)")
        ->type_name("D");
    command->add_option("--unit", options->unit, "Unit of the labels, e.g. mm or in")->type_name("UNIT");
    command->add_option("--locale", options->locale, "Locale of the numbers, e.g. de_DE (C)")->type_name("L");
    command->add_option("-o", options->output, "The picture: .png, .svg or .pdf")->type_name("FILE");
    command->add_flag("--describe", options->describe, "Prints the layout as JSON");
    command->callback([options] { runLegend(*options); });
}

}  // namespace lys::cli
