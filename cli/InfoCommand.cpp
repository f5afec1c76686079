#include "Commands.h"
#include "Failure.h"
#include "Output.h"
#include "TableDescription.h"
#include "TableSource.h"
#include "VolumeDescription.h"
#include "VolumeSource.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <filesystem>
#include <fstream>
#include <memory>
#include <system_error>

namespace lys::cli {

namespace {

struct InfoOptions {
    std::string source;
    bool json = false;
};

/** Object files are JSON, which no volume's file is. */
bool looksLikeTable(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        return false;
    }
    if (path.ends_with(".json")) {
        return true;
    }
    std::ifstream file(path, std::ios::binary);
    char first = 0;
    return file >> first && first == '{';
}

void runInfo(const InfoOptions& options) {
    std::error_code error;
    const bool builtIn = isBuiltInVolume(options.source);
    const bool exists = std::filesystem::exists(options.source, error);
    if (!exists && !builtIn && !TableSource::isPreset(options.source)) {
        throwUnusable(options.source + ": there is no such file or folder, and no preset of this name");
    }
    if ((exists && looksLikeTable(options.source)) || (!exists && !builtIn)) {
        const TableSource source(options.source);
        const TableDescription description(source.table());
        printText(options.json ? description.toJson(source.name()) : description.toText(source.name()));
    } else {
        const std::shared_ptr<const LyrVolume> volume = readVolume(options.source);
        printText(options.json ? volumeJson(*volume, builtIn) : volumeText(*volume));
    }
}

}  // namespace

void addInfoCommand(CLI::App& program) {
    const auto options = std::make_shared<InfoOptions>();
    CLI::App* command = program.add_subcommand("info", "Tell what is in a table or a volume");
    command
        ->add_option(
            "source", options->source,
            "A table's file, the name of a preset, or a volume: a file, a folder of slices, or builtin:casting")
        ->required()
        ->type_name("TABLE|VOLUME");
    command->add_flag("--json", options->json, "As JSON, with the truth about the built-in casting");
    command->callback([options] { runInfo(*options); });
}

}  // namespace lys::cli
