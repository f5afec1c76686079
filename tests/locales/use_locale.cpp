#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <stdexcept>

// Loaded before a program (LD_PRELOAD): gives it the locale of the environment, for C and C++ alike, before its own
// code runs. A locale that does not exist ends it, so that no test passes in another one by mistake.

namespace {

const bool IN_USE = [] {
    const char* wanted = std::getenv("LC_ALL");
    try {
        if (std::setlocale(LC_ALL, "")) {
            std::locale::global(std::locale(""));
            return true;
        }
    } catch (const std::runtime_error&) {
    }
    std::fprintf(stderr, "there is no locale \"%s\"\n", wanted ? wanted : "");
    std::_Exit(3);
}();

}  // namespace
