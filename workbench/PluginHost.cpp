#include <lyr_core/LyrModuleLoader.h>
#include <lys_core/LyqTranslations.h>
#include <workbench/PluginHost.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace workbench {

namespace {

/** Whether a library's file names another one: what a library needs stands in it by its file name. */
bool names(const QString& file, const QString& other) {
    QFile content(file);
    const QByteArray name = QFile::encodeName(QFileInfo(other).fileName());
    return content.open(QIODevice::ReadOnly) && content.readAll().contains('\0' + name + '\0');
}

QStringList modulesIn(const QString& path) {
    const QDir folder(path);
    QStringList files;
    for (const QString& name : folder.entryList({"*.so"}, QDir::Files)) {
        files << folder.absoluteFilePath(name);
    }
    return files;
}

QString toQString(const LyrString& text) {
    return QString::fromUtf8(text.utf8());
}

}  // namespace

QStringList dependencyOrder(const QStringList& files) {
    QStringList waiting = files;
    waiting.sort();
    QStringList ordered;
    while (!waiting.isEmpty()) {
        const auto free = std::find_if(waiting.begin(), waiting.end(), [&](const QString& file) {
            return std::none_of(waiting.begin(), waiting.end(),
                                [&](const QString& other) { return other != file && names(file, other); });
        });
        // In a ring the first by name begins.
        ordered << waiting.takeAt(free != waiting.end() ? static_cast<int>(free - waiting.begin()) : 0);
    }
    return ordered;
}

QString PluginHost::defaultFolder() {
    // The translations' folder is <prefix>/share/lys/translations.
    return QDir::cleanPath(LyqTranslations::folder() + "/../../../lib/lys");
}

QStringList PluginHost::furtherFiles(QStringList& problems) const {
    const QFileInfo folder(mFurther);
    if (mFurther.isEmpty()) {
        return {};
    }
    if (!folder.isDir()) {
        problems << (folder.exists()
                         ? tr("%1 is not a folder. Name the folder that holds the plug-ins after --plug-ins.")
                         : tr("There is no folder %1. Name one that holds plug-ins after --plug-ins."))
                        .arg(folder.absoluteFilePath());
        return {};
    }
    if (folder.canonicalFilePath() == QFileInfo(mFolder).canonicalFilePath()) {
        return {};
    }
    QStringList files = modulesIn(folder.absoluteFilePath());
    if (files.isEmpty()) {
        problems << tr("There are no plug-ins (*.so) in the folder %1, or it may not be read. Build them, or name "
                       "another folder after --plug-ins.")
                        .arg(folder.absoluteFilePath());
    }
    return files;
}

QString PluginHost::loadModule(const QString& file) {
    const std::string path = QFile::encodeName(file).toStdString();
    LyrString message;
    const LyrString name = LyrModuleLoader::readName(path, message);
    if (name.isEmpty() || !LyrModuleLoader::load(path, message)) {
        return toQString(message);
    }
    if (!LyrModuleLoader::init(name.utf8(), message)) {
        QString problem = toQString(message);
        LyrModuleLoader::unload(name.utf8(), message);
        return problem;
    }
    mModules.emplace_back(name.utf8());
    return {};
}

QStringList PluginHost::loadAll() {
    QStringList problems;
    const QStringList further = furtherFiles(problems);
    mHasFurtherProblem = !problems.isEmpty();
    for (const QString& file : dependencyOrder(modulesIn(mFolder) + further)) {
        if (const QString problem = loadModule(file); !problem.isEmpty()) {
            const bool isFurther = further.contains(file);
            mHasFurtherProblem = mHasFurtherProblem || isFurther;
            problems << (isFurther
                             ? tr("%1 Build the plug-in anew for this workbench, or take the file away.").arg(problem)
                             : problem);
        }
    }
    return problems;
}

QStringList PluginHost::unloadAll() {
    QStringList problems;
    // All clean-ups first: what a module offers may hold objects of another one.
    for (auto module = mModules.rbegin(); module != mModules.rend(); ++module) {
        LyrString message;
        if (!LyrModuleLoader::cleanup(module->c_str(), message)) {
            problems << toQString(message);
        }
    }
    std::vector<std::string> stayed;
    for (auto module = mModules.rbegin(); module != mModules.rend(); ++module) {
        LyrString message;
        if (!LyrModuleLoader::unload(module->c_str(), message)) {
            problems << toQString(message);
            stayed.insert(stayed.begin(), *module);
        }
    }
    mModules = stayed;
    return problems;
}

}  // namespace workbench
