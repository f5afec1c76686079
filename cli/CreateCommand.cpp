#include "Commands.h"
#include "Failure.h"
#include "Messages.h"
#include "Numbers.h"
#include "TableOutput.h"

#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrQuantity.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

namespace lys::cli {

namespace {

/** What was given on the command line. */
struct CreateOptions {
    std::string generator;
    std::string from;
    std::string to;
    std::optional<std::string> step;
    std::string type = "Rainbow";
    std::optional<std::string> quantity;
    std::string output;
};

struct Numbers {
    float from;
    float to;
    float step;
};

/** One of the ways to make a table from a few numbers. */
struct Generator {
    const char* name;
    bool stepped;
    bool angles;  ///< its values are angles, clamped to a quarter turn
    bool (*run)(LyrObject* table, const Numbers& numbers, Lyrenum type);
};

const Generator GENERATORS[] = {
    {"smooth", false, false,
     [](LyrObject* table, const Numbers& n, Lyrenum type) {
         return LyrColorLookupTable::createSmooth(table, n.from, n.to, type);
     }},
    {"stepped", true, false,
     [](LyrObject* table, const Numbers& n, Lyrenum type) {
         return LyrColorLookupTable::createStepped(table, n.from, n.to, n.step, type);
     }},
    {"sphere-segment", true, true,
     [](LyrObject* table, const Numbers& n, Lyrenum type) {
         return LyrColorLookupTable::createSphereSegmentStepped(table, n.from, n.to, n.step, type);
     }},
};

/** Keeps the error channel quiet: what is wrong is said in words. */
struct QuietErrors : LyrError::Listener {
    bool errorEmitted(const LyrError::Message&) override { return true; }
};

/** Names as a list to choose from. */
template <class Names>
std::string listed(const Names& names) {
    std::string text;
    for (const auto& name : names) {
        text += (text.empty() ? "" : ", ") + std::string(name);
    }
    return text;
}

const Generator& findGenerator(const std::string& name) {
    const auto* found =
        std::find_if(std::begin(GENERATORS), std::end(GENERATORS), [&](const Generator& g) { return name == g.name; });
    if (found == std::end(GENERATORS)) {
        throwUnusable(name + ": there is no such way to create a table; there are smooth, stepped, sphere-segment");
    }
    return *found;
}

/** A section type by its name. Those that no rule colours are taken as well: their sections are transparent. */
Lyrenum findType(const std::string& name) {
    const Lyrenum withRule[] = {Lyr::Constant, Lyr::Gradient,          Lyr::Rainbow, Lyr::InvertedRainbow,
                                Lyr::HueCycle, Lyr::BlackGreenBlueRed, Lyr::Continue};
    const Lyrenum withoutRule[] = {Lyr::Custom, Lyr::InvertedHueCycle};
    std::vector<std::string> names;
    for (const Lyrenum type : withRule) {
        names.push_back(type.getName());
        if (names.back() == name) {
            return type;
        }
    }
    for (const Lyrenum type : withoutRule) {
        if (type.getName() == name) {
            warn("--type " + name + ": no rule colours this type, its sections are transparent");
            return type;
        }
    }
    throwUnusable("--type " + name + ": there is no such type; types are " + listed(names));
}

Lyrenum findQuantity(const std::string& name) {
    std::vector<std::string> names;
    for (const Lyrenum quantity : LyrQuantity::getQuantities()) {
        names.push_back(quantity.getName());
        if (names.back() == name) {
            return quantity;
        }
    }
    throwUnusable("--quantity " + name + ": there is no such quantity; quantities are " + listed(names));
}

float readNumber(const char* option, const std::string& text) {
    const std::optional<float> number = parseFloat(text);
    if (!number) {
        throwUnusable(std::string(option) + ' ' + text + ": this is no number that a float can hold");
    }
    return *number;
}

Numbers readNumbers(const CreateOptions& options, const Generator& generator) {
    if (generator.stepped && !options.step) {
        throwUnusable(std::string(generator.name) + " needs the width of a step: give --step");
    }
    Numbers numbers{readNumber("--from", options.from), readNumber("--to", options.to), 0.0f};
    if (options.step) {
        numbers.step = readNumber("--step", *options.step);
        if (!generator.stepped) {
            warn("--step is not used: a smooth table has no steps");
        }
    }
    return numbers;
}

/** Why a generator refused its numbers, in words. */
std::string reasonRefused(const Generator& generator, const Numbers& numbers) {
    const auto isEmpty = [&] {
        constexpr float quarterTurn = 1.5707964f;
        return generator.angles
                   ? std::clamp(numbers.from, 0.0f, quarterTurn) >= std::clamp(numbers.to, 0.0f, quarterTurn)
                   : numbers.from >= numbers.to;
    };
    const std::string range = formatNumber(numbers.from) + " to " + formatNumber(numbers.to);
    if (!std::isfinite(numbers.from) || !std::isfinite(numbers.to) ||
        (generator.stepped && !std::isfinite(numbers.step))) {
        return "the numbers must be finite";
    }
    if (isEmpty()) {
        return generator.angles
                   ? "of the angles from " + range + " nothing lies between 0 and 1.5707964 (a quarter turn)"
                   : "the range from " + range + " is empty; --from must be less than --to";
    }
    if (generator.stepped && numbers.step <= 0.0f) {
        return "a step of " + formatNumber(numbers.step) + " leads nowhere; --step must be greater than 0";
    }
    if (generator.stepped && !std::isfinite(numbers.to - numbers.from)) {
        return "the range from " + range + " is wider than the largest float";
    }
    if (generator.stepped) {
        return "a step of " + formatNumber(numbers.step) + " from " + range +
               " makes more than 1000000 boundaries; give a greater --step";
    }
    return "there is not enough memory";
}

void runCreate(const CreateOptions& options) {
    const Generator& generator = findGenerator(options.generator);
    const Lyrenum type = findType(options.type);
    const Lyrenum quantity = options.quantity ? findQuantity(*options.quantity) : Lyrenum(Lyr::Length);
    const Numbers numbers = readNumbers(options, generator);
    const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
    const QuietErrors quiet;
    if (!table || !lyrSetValue(table.get(), Lyr::Quantity, quantity)) {
        throwFailed("there is not enough memory for a table");
    }
    if (!generator.run(table.get(), numbers, type)) {
        throwFailed("no " + std::string(generator.name) + " table: " + reasonRefused(generator, numbers));
    }
    writeObject(*table.get(), options.output);
}

constexpr const char* EXPLANATION =
    "smooth: one section of the type over the whole range. stepped: equal steps near the width given, so that a whole\n"
    "number of them fits, each of one colour of the type. sphere-segment: from angles in radians between 0 and pi/2,\n"
    "steps whose boundaries have equally spaced cosines: zones of equal area on a sphere.\n"
    "Below and above the range every table is violet and pink. Types are Constant, Gradient, Rainbow, "
    "InvertedRainbow,\n"
    "HueCycle, BlackGreenBlueRed and Continue.";

}  // namespace

void addCreateCommand(CLI::App& program) {
    const auto options = std::make_shared<CreateOptions>();
    CLI::App* command = program.add_subcommand("create", "Make a table from a range, a step and a type of colouring");
    command->footer(EXPLANATION);
    command->add_option("generator", options->generator, "How it is made")
        ->required()
        ->type_name("smooth|stepped|sphere-segment");
    command->add_option("--from", options->from, "Where the range begins")->required()->type_name("A");
    command->add_option("--to", options->to, "Where it ends")->required()->type_name("B");
    command->add_option("--step", options->step, "The width of a step (needed unless smooth)")->type_name("S");
    command->add_option("--type", options->type, "What colours the range (default: Rainbow)")->type_name("TYPE");
    command
        ->add_option("--quantity", options->quantity,
                     "What the values measure: Length (the default), Area, Volume, Angle, Percent or Number")
        ->type_name("QUANTITY");
    command->add_option("-o,--output", options->output, "The table's file, or - for standard output")
        ->required()
        ->type_name("FILE");
    command->callback([options] { runCreate(*options); });
}

}  // namespace lys::cli
