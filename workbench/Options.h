#pragma once

#include <QSize>
#include <QString>

namespace workbench {

/** What the command line asks for. */
struct Options {
    QString volume = "builtin:casting";
    QString analysis;    ///< id of the analysis to run; empty: none
    QString report;      ///< file for its numbers; empty: none
    QString screenshot;  ///< empty: none
    QSize size{1280, 860};
};

/** Reads a command line. False: the program ends with `status`, and what there is to say was said. */
bool parseOptions(int argc, char** argv, Options& out, int& status);

}  // namespace workbench
