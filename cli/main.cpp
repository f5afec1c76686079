#include "Commands.h"
#include "Failure.h"
#include "Messages.h"
#include "Output.h"
#include "Process.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <exception>
#include <new>

namespace {

using lys::cli::ExitStatus;

constexpr const char* DESCRIPTION =
    "Colours values with colour lookup tables.\n"
    "\n"
    "Exit status: 0 done; 1 the operation failed; 2 wrong usage or unusable input. On 1 and 2 nothing is printed on\n"
    "standard output, and no output file is made or replaced.";

/** Reads the command line and runs the chosen command. Texts that were asked for go to standard output. */
ExitStatus runProgram(int argc, const char* const* argv) {
    CLI::App program(DESCRIPTION, "colortable");
    program.set_version_flag("--version", std::string("colortable ") + LYS_VERSION);
    program.require_subcommand(1);
    lys::cli::addCreateCommand(program);
    lys::cli::addInfoCommand(program);
    lys::cli::addMapCommand(program);
    lys::cli::addLegendCommand(program);
    lys::cli::addPresetsCommand(program);
    try {
        program.parse(argc, argv);
        return ExitStatus::Done;
    } catch (const CLI::CallForHelp&) {
        lys::cli::printText(program.help());
        return ExitStatus::Done;
    } catch (const CLI::CallForVersion&) {
        lys::cli::printText(program.version() + '\n');
        return ExitStatus::Done;
    } catch (const CLI::ParseError& error) {
        lys::cli::printError(std::string(error.what()) + "; see colortable --help");
        return ExitStatus::Unusable;
    }
}

ExitStatus runGuarded(int argc, const char* const* argv) {
    try {
        return runProgram(argc, argv);
    } catch (const lys::cli::Failure& failure) {
        lys::cli::printError(failure.what());
        return failure.status();
    } catch (const lys::cli::Interrupted&) {
        lys::cli::endByInterrupt();
    } catch (const std::bad_alloc&) {
        lys::cli::printError("there is not enough memory");
    } catch (const std::exception& error) {
        lys::cli::printError(error.what());
    }
    return ExitStatus::Failed;
}

}  // namespace

int main(int argc, char** argv) {
    lys::cli::prepareProcess();
    return static_cast<int>(runGuarded(argc, argv));
}
