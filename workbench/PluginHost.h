#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace workbench {

/** Loads every module of a folder, whatever it is, and unloads them again. A module that another one needs is loaded
 * first and unloaded last. */
class PluginHost {
public:
    /** @param folder  absolute */
    explicit PluginHost(QString folder) : mFolder(std::move(folder)) {}

    /** The folder of modules beside the host's own libraries. */
    static QString defaultFolder();

    /** Loads and initialises what is there. Returns what could not be, a message for each. */
    QStringList loadAll();
    /** Takes all back, the last one first. Returns what had to stay, a message for each. */
    QStringList unloadAll();

    /** Names of the loaded modules, in the order in which they were loaded. */
    const std::vector<std::string>& modules() const { return mModules; }

private:
    QString mFolder;
    std::vector<std::string> mModules;
};

/** Files of modules, those that others name before those that name them; otherwise by name. */
QStringList dependencyOrder(const QStringList& files);

}  // namespace workbench
