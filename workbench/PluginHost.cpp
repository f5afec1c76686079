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

QStringList PluginHost::loadAll() {
    const QDir folder(mFolder);
    QStringList files;
    for (const QString& name : folder.entryList({"*.so"}, QDir::Files)) {
        files << folder.absoluteFilePath(name);
    }
    QStringList problems;
    for (const QString& file : dependencyOrder(files)) {
        const std::string path = QFile::encodeName(file).toStdString();
        LyrString message;
        const LyrString name = LyrModuleLoader::readName(path, message);
        if (name.isEmpty() || !LyrModuleLoader::load(path, message)) {
            problems << toQString(message);
        } else if (!LyrModuleLoader::init(name.utf8(), message)) {
            problems << toQString(message);
            LyrModuleLoader::unload(name.utf8(), message);
        } else {
            mModules.emplace_back(name.utf8());
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
