#pragma once

namespace CLI {
class App;
}

/** The sub-commands. Each function declares one: its options, and what runs once all arguments have been read. Running
 *  throws Failure. */
namespace lys::cli {

void addCreateCommand(CLI::App& program);
void addInfoCommand(CLI::App& program);
void addLegendCommand(CLI::App& program);
void addMapCommand(CLI::App& program);
void addPresetsCommand(CLI::App& program);

}  // namespace lys::cli
