#include "Commands.h"
#include "Failure.h"
#include "JsonText.h"
#include "Messages.h"
#include "Numbers.h"
#include "Output.h"
#include "PresetLibrary.h"
#include "TableDescription.h"
#include "TableOutput.h"
#include "TableSource.h"

#include <lyr_core/LyrHostIdentifiers.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <memory>
#include <set>

namespace lys::cli {

namespace {

struct PresetOptions {
    std::string name;
    std::string newName;
    std::string kind;
    std::string table;
    std::string output;
    std::vector<std::string> files;
    bool json = false;
    bool absolute = false;
    bool replace = false;
};

using Options = std::shared_ptr<PresetOptions>;

void checkName(const std::string& name) {
    const LyrString reason = LyqPresetStore::checkName(LyrString(name));
    if (!reason.isNull()) {
        throwUnusable(reason.utf8());
    }
}

std::vector<PresetLibrary::Entry> chosenEntries(const PresetOptions& options) {
    PresetLibrary library;
    std::vector<PresetLibrary::Entry> entries = library.list();
    if (!options.kind.empty()) {
        std::erase_if(entries, [&](const auto& entry) { return options.kind != PresetLibrary::wordFor(entry.kind); });
    }
    return entries;
}

void listPresets(const PresetOptions& options) {
    if (!options.kind.empty() && options.kind != "user" && options.kind != "installed" && options.kind != "built-in") {
        throwUnusable("--kind " + options.kind + ": there is no such kind; kinds are user, installed and built-in");
    }
    std::string text;
    JsonText json;
    json.begin('[');
    for (const PresetLibrary::Entry& entry : chosenEntries(options)) {
        const std::string word = PresetLibrary::wordFor(entry.kind);
        text += word + std::string(11 - word.size(), ' ') + printable(entry.name) + '\n';
        json.begin('{');
        json.add("name", entry.name);
        json.add("kind", word);
        if (!entry.problem.empty()) {
            json.add("problem", entry.problem);
            warn(entry.problem);
        }
        json.end();
    }
    json.end();
    printText(options.json ? json.text() : text);
}

void showPreset(const PresetOptions& options) {
    PresetLibrary library;
    const PresetLibrary::Stored stored = library.load(options.name);
    const char* kind = PresetLibrary::wordFor(library.require(options.name));
    const TableDescription description(static_cast<const LyrColorLookupTable&>(*stored.table));
    const LyrInterval<float, float>& range = stored.referenceRange;
    if (options.json) {
        JsonText json;
        json.begin('{');
        json.add("kind", "preset");
        json.add("name", options.name);
        json.add("from", kind);
        json.add("absolute", stored.isAbsolute);
        json.addNumbers("referenceRange",
                        range.isEmpty() ? std::vector<float>() : std::vector<float>{range.low, range.high});
        description.addTo(json, "table", options.name);
        json.end();
        printText(json.text());
        return;
    }
    const std::string rangeText =
        range.isEmpty() ? "none" : formatNumber(range.low) + " to " + formatNumber(range.high);
    printText("preset " + printable(options.name) + " (" + kind + ")\n" +
              (stored.isAbsolute ? "absolute" : "relative") + ", reference range " + rangeText + '\n' +
              description.toText(printable(options.name)));
}

void savePreset(const PresetOptions& options) {
    checkName(options.name);
    const TableSource source(options.table);
    PresetLibrary library;
    library.handler().setApplicationObject(&source.table());
    library.handler().setAbsolutePreset(options.absolute);
    if (!library.handler().savePresetAs(LyrString(options.name), Lyr::UserPreset, options.replace)) {
        if (library.handler().isNameTaken()) {
            throwFailed(printable(options.name) + ": there is a preset of this name already; --replace replaces it");
        }
        throwFailed(library.handler().getMessage().utf8());
    }
}

void applyPreset(const PresetOptions& options) {
    PresetLibrary library;
    if (options.table.empty()) {
        const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
        if (!table) {
            throwFailed("there is not enough memory for a table");
        }
        library.apply(options.name, *table.get());
        writeObject(*table.get(), options.output);
        return;
    }
    const TableSource source(options.table);
    library.apply(options.name, source.table());
    writeObject(source.table(), options.output);
}

/** The presets that come with the programs cannot be changed. */
void requireUsers(PresetLibrary& library, const std::string& name) {
    if (library.require(name) != Lyr::UserPreset) {
        throwFailed(printable(name) + ": this preset comes with the program and cannot be changed");
    }
}

void renamePreset(const PresetOptions& options) {
    checkName(options.newName);
    PresetLibrary library;
    requireUsers(library, options.name);
    if (!library.handler().renamePreset(LyrString(options.name), LyrString(options.newName))) {
        throwFailed(library.handler().getMessage().utf8());
    }
}

void deletePreset(const PresetOptions& options) {
    PresetLibrary library;
    requireUsers(library, options.name);
    if (!library.handler().removePreset(LyrString(options.name))) {
        throwFailed(library.handler().getMessage().utf8());
    }
}

[[noreturn]] void throwNotImported(PresetLibrary& library, const std::string& file, const LyrString& name) {
    const std::string message = library.handler().getMessage().utf8();
    if (name.isNull()) {
        throwUnusable(message + "; a table is saved as a preset by colortable presets save NAME --table FILE");
    }
    throwFailed(file + ": " + message + (library.handler().isNameTaken() ? " --replace replaces it." : ""));
}

// All files are looked at before the first is taken in.
void importPresets(const PresetOptions& options) {
    PresetLibrary library;
    std::set<LyrString> names;
    for (const std::string& file : options.files) {
        LyrString name;
        if (!library.handler().checkImport(file, options.replace, name)) {
            throwNotImported(library, file, name);
        }
        if (!names.insert(name).second) {
            throwFailed(file + ": another of the files has the same name, " + printable(name.utf8()));
        }
    }
    for (const std::string& file : options.files) {
        LyrString name;
        if (!library.handler().importPreset(file, options.replace, name)) {
            throwNotImported(library, file, name);
        }
        if (!library.handler().getMessage().isEmpty()) {
            warn(library.handler().getMessage().view());
        }
    }
}

void exportPreset(const PresetOptions& options) {
    PresetLibrary library;
    const Lyrenum kind = library.require(options.name);
    if (kind == Lyr::DefaultPreset) {
        writeObject(*library.load(options.name).proxy, options.output);
        return;
    }
    library.load(options.name);
    const LyrString name(options.name);
    if (options.output == "-") {
        std::string bytes;
        LyrString message;
        if (!library.handler().store(kind)->contentOf(name, bytes, message)) {
            throwFailed(message.utf8());
        }
        printText(bytes);
        return;
    }
    if (!library.handler().exportPreset(name, kind, options.output)) {
        throwFailed(library.handler().getMessage().utf8());
    }
}

CLI::App* addPart(CLI::App& presets, const Options& options, const char* name, const char* help,
                  void (*run)(const PresetOptions&)) {
    CLI::App* part = presets.add_subcommand(name, help);
    part->callback([options, run] { run(*options); });
    return part;
}

void addName(CLI::App* part, const Options& options) {
    part->add_option("name", options->name, "The name of a preset")->required()->type_name("NAME");
}

void addReading(CLI::App& presets, const Options& options) {
    CLI::App* list =
        addPart(presets, options, "list", "List presets: the user's, installed and built-in ones", listPresets);
    list->add_option("--kind", options->kind, "Those of one kind only")->type_name("user|installed|built-in");
    list->add_flag("--json", options->json, "As JSON");

    CLI::App* show = addPart(presets, options, "show", "Tell what is in a preset", showPreset);
    addName(show, options);
    show->add_flag("--json", options->json, "As JSON");

    CLI::App* apply = addPart(presets, options, "apply", "Apply a preset to a table and write the table", applyPreset);
    addName(apply, options);
    apply->add_option("--table", options->table, "The table to apply it to (default: a new one)")->type_name("TABLE");
    apply->add_option("-o,--output", options->output, "The table's file, or - for standard output")
        ->required()
        ->type_name("FILE");

    CLI::App* copy = addPart(presets, options, "export", "Write the file of a preset", exportPreset);
    addName(copy, options);
    copy->add_option("-o,--output", options->output, "The file, or - for standard output")
        ->required()
        ->type_name("FILE");
}

void addWriting(CLI::App& presets, const Options& options) {
    CLI::App* save = addPart(presets, options, "save", "Save a table as a preset of the user", savePreset);
    addName(save, options);
    save->add_option("--table", options->table, "The table: a file, or the name of a preset")
        ->required()
        ->type_name("TABLE");
    save->add_flag("--absolute", options->absolute, "Its positions are to be applied as they are");
    save->add_flag("--replace", options->replace, "Replace a preset of this name");

    CLI::App* rename = addPart(presets, options, "rename", "Give a preset of the user another name", renamePreset);
    addName(rename, options);
    rename->add_option("new-name", options->newName, "The new name, which must be free")->required()->type_name("NEW");

    addName(addPart(presets, options, "delete", "Delete a preset of the user", deletePreset), options);

    CLI::App* import = addPart(presets, options, "import", "Take in files of presets", importPresets);
    import->add_option("files", options->files, "Files that export wrote")->required()->type_name("FILE");
    import->add_flag("--replace", options->replace, "Replace presets of the same names");
}

}  // namespace

void addPresetsCommand(CLI::App& program) {
    const auto options = std::make_shared<PresetOptions>();
    CLI::App* presets = program.add_subcommand("presets", "List, save, apply and manage presets of tables");
    presets->require_subcommand(1);
    presets->footer("The user's presets lie in $XDG_DATA_HOME/lys_colortable/presets, for every program alike.");
    addReading(*presets, options);
    addWriting(*presets, options);
}

}  // namespace lys::cli
