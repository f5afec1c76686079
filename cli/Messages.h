#pragma once

#include <string_view>

namespace lys::cli {

/** Prints "colortable: <text>" on standard error. */
void printError(std::string_view text) noexcept;

/** Prints "colortable: warning: <text>" on standard error. */
void warn(std::string_view text) noexcept;

/** How far long work is, as one line on standard error that is wiped out in the end. Silent unless standard error is a
 *  terminal. */
class Progress {
public:
    explicit Progress(std::string_view what);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /** `done` of `total` is finished; a total of 0 is an unknown one. */
    void show(double done, double total);

private:
    std::string_view mWhat;
    bool mTerminal;
    bool mShown = false;
    double mLastTime;
};

}  // namespace lys::cli
