#pragma once

#include <QSize>
#include <QString>

#include <optional>

namespace workbench {

/** What the command line asks for. */
struct Options {
    QString volume = "builtin:casting";
    QString analysis;                ///< id of the analysis to run; empty: none
    std::optional<float> threshold;  ///< of the analysis; none: it chooses
    QString preset;                  ///< name of the preset for the table of the layer in front; empty: none
    QString report;                  ///< file for its numbers; empty: none
    QString screenshot;              ///< empty: none
    QString plugIns;                 ///< folder of further plug-ins; empty: none
    QSize size{1280, 860};
};

/** Reads a command line. False: the program ends with `status`, and what there is to say was said. */
bool parseOptions(int argc, char** argv, Options& out, int& status);

}  // namespace workbench
