#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace workbench {

/** Loads every module of a folder, whatever it is, and unloads them again. A module that another one needs is loaded
 * first and unloaded last. */
class PluginHost {
    Q_DECLARE_TR_FUNCTIONS(PluginHost)

public:
    /** @param folder   absolute; one that is not there has no modules
     *  @param further  a folder that the user names, empty for none: it is missed if it is not there */
    explicit PluginHost(QString folder, QString further = QString())
        : mFolder(std::move(folder)), mFurther(std::move(further)) {}

    /** The folder of modules beside the host's own libraries. */
    static QString defaultFolder();

    /** Loads and initialises what is there. Returns what could not be, a message for each. */
    QStringList loadAll();
    /** Whether something was wrong with the folder that the user names, or with a module in it. */
    bool hasFurtherProblem() const { return mHasFurtherProblem; }
    /** Takes all back, the last one first. Returns what had to stay, a message for each. */
    QStringList unloadAll();

    /** Names of the loaded modules, in the order in which they were loaded. */
    const std::vector<std::string>& modules() const { return mModules; }

private:
    /** Files of the user's folder that may be modules; what is wrong with it goes to `problems`. */
    QStringList furtherFiles(QStringList& problems) const;
    /** A message if it could not be done, else nothing. */
    QString loadModule(const QString& file);

    QString mFolder;
    QString mFurther;
    bool mHasFurtherProblem = false;
    std::vector<std::string> mModules;
};

/** Files of modules, those that others name before those that name them; otherwise by name. */
QStringList dependencyOrder(const QStringList& files);

}  // namespace workbench
