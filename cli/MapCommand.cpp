#include "BlockColors.h"
#include "Commands.h"
#include "Failure.h"
#include "MapValues.h"
#include "MapVolume.h"
#include "Numbers.h"
#include "TableRange.h"
#include "TableSource.h"
#include "VolumeSource.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <memory>
#include <optional>

namespace lys::cli {

namespace {

/** What was given on the command line. */
struct MapOptions {
    std::string table;
    std::optional<std::string> at;
    std::optional<std::string> input;
    std::optional<std::string> output;
    std::optional<std::string> slice;
    std::optional<std::string> range;
    bool all = false;
};

bool isRaw(const std::string& input) {
    return input == "-" || input.ends_with(".f32");
}

std::optional<TableRange> rangeOf(const MapOptions& options) {
    return options.range ? std::optional(TableRange::parse(*options.range)) : std::nullopt;
}

/** Stretches the table over a stated range. There is no automatic one without a volume. */
void applyRange(const MapOptions& options, LyrColorLookupTable& table) {
    if (const std::optional<TableRange> range = rangeOf(options)) {
        if (range->automatic) {
            throwUnusable("--range auto needs a volume; give the range as A,B");
        }
        range->apply(table);
    }
}

/** The range of a volume's values, for a table to be stretched over. */
TableRange rangeOf(const LyrVolume& volume) {
    const LyrVolume::ValueRange range = volume.valueRange();
    const std::string& source = volume.description().source;
    if (range.isEmpty()) {
        throwUnusable(source + ": --range auto: the volume has no finite value; give the range as A,B");
    }
    if (range.low == range.high) {
        throwUnusable(source + ": --range auto: every value of the volume is " + formatNumber(range.low) +
                      "; give the range as A,B");
    }
    return {false, static_cast<double>(range.low), static_cast<double>(range.high)};
}

void refuseVolumeOptions(const MapOptions& options, const char* what) {
    if (options.slice || options.all) {
        throwUnusable(std::string("--slice and --all need a volume, they do not go with ") + what);
    }
}

void runAt(const MapOptions& options) {
    if (options.input || options.output) {
        throwUnusable("--at prints its colours; it does not go with --input or --output");
    }
    refuseVolumeOptions(options, "--at");
    const std::vector<float> values = parseValues(*options.at);
    const TableSource source(options.table);
    applyRange(options, source.table());
    BlockColors colors(source.table(), source.name());
    mapValues(colors, values);
}

void runRaw(const MapOptions& options) {
    refuseVolumeOptions(options, "raw values");
    if (options.output->ends_with(".png") || options.output->ends_with(".nrrd")) {
        throwUnusable(*options.output +
                      ": the colours of raw values are raw floats; only those of a volume make a picture");
    }
    const TableSource source(options.table);
    applyRange(options, source.table());
    BlockColors colors(source.table(), source.name());
    mapRaw(colors, *options.input, *options.output);
}

void runVolume(const MapOptions& options) {
    const VolumeTask task(options.slice, options.all, *options.output);
    std::optional<TableRange> range = rangeOf(options);
    const TableSource source(options.table);
    const std::shared_ptr<const LyrVolume> volume = readVolume(*options.input);
    task.check(*volume);
    if (range) {
        (range->automatic ? rangeOf(*volume) : *range).apply(source.table());
    }
    BlockColors colors(source.table(), source.name());
    task.run(*volume, colors);
}

void runMap(const MapOptions& options) {
    if (options.at) {
        runAt(options);
    } else if (!options.input || !options.output) {
        throwUnusable("give the values with --at, or an input with -i and an output with -o");
    } else if (isRaw(*options.input)) {
        runRaw(options);
    } else {
        runVolume(options);
    }
}

constexpr const char* EXPLANATION =
    "Values are decimal numbers, nan, inf or -inf; each is taken as the nearest float, denormals included.\n"
    "Raw output is four little-endian 32-bit floats (red, green, blue, alpha) for each value. It waits in a nameless\n"
    "temporary file (in $TMPDIR, or /var/tmp) until all values have their colour, when it goes to standard output.\n"
    "PNG pictures have 8 bits a channel, row 0 on top, not premultiplied. NRRD files hold four floats for each voxel.";

}  // namespace

void addMapCommand(CLI::App& program) {
    const auto options = std::make_shared<MapOptions>();
    CLI::App* command = program.add_subcommand("map", "Colour values, raw floats or a volume with a table");
    command->footer(EXPLANATION);
    command->add_option("--table", options->table, "A table's file, or the name of a preset")
        ->required()
        ->type_name("TABLE");
    command->add_option("--at", options->at, "Values, separated by commas: prints a line 'r g b a' for each")
        ->type_name("V,V,...");
    command
        ->add_option(
            "-i,--input", options->input,
            "Raw little-endian 32-bit floats (a file *.f32, or - for standard input), or a volume: a file, a folder of "
            "slices, or builtin:casting")
        ->type_name("INPUT");
    command
        ->add_option(
            "-o,--output", options->output,
            "For raw values a file of raw colours, or - for standard output; for a volume out.png, out-%04d.png "
            "(with --all) or out.nrrd")
        ->type_name("OUTPUT");
    command
        ->add_option("--slice", options->slice,
                     "The slice x:N, y:N or z:N, counted from 0 (default: the middle across z)")
        ->type_name("AXIS:N");
    command->add_flag("--all", options->all, "All slices across z");
    command
        ->add_option("--range", options->range,
                     "Stretch the table's positions over the values A to B, or over those of the volume")
        ->type_name("auto|A,B");
    command->callback([options] { runMap(*options); });
}

}  // namespace lys::cli
