#pragma once

#include <stdexcept>

/** What the program asks of the system around it. */
namespace lys::cli {

/** The user or the system asked the program to end; it puts away what is unfinished first. */
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

/** Makes sure that the three standard streams exist, so that no file of ours takes their place; that a reader that goes
 * away is an error instead of a sudden end; and that a request to end is heard between two steps. Called once, first
 * thing. */
void prepareProcess();

/** True once the program was asked to end. */
bool isInterrupted() noexcept;

/** Throws Interrupted once the program was asked to end. */
void checkInterrupted();

/** Ends the process by the signal that asked for it, as its caller expects. */
[[noreturn]] void endByInterrupt();

}  // namespace lys::cli
