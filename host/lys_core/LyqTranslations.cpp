#include <lys_core/LyqTranslations.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTranslator>

#include <dlfcn.h>

#include <memory>

namespace {

std::unique_ptr<QTranslator>& installed() {
    static std::unique_ptr<QTranslator> translator;
    return translator;
}

}  // namespace

QString LyqTranslations::folder() {
    Dl_info self;
    if (dladdr(reinterpret_cast<const void*>(&LyqTranslations::folder), &self) == 0) {
        return {};
    }
    const QDir libraries = QFileInfo(QString::fromLocal8Bit(self.dli_fname)).absoluteDir();
    return QDir::cleanPath(libraries.filePath(QStringLiteral("../share/lys/translations")));
}

bool LyqTranslations::install(const QLocale& locale) {
    remove();
    auto translator = std::make_unique<QTranslator>();
    if (!QCoreApplication::instance() ||
        !translator->load(locale, QStringLiteral("lys"), QStringLiteral("_"), folder())) {
        return false;
    }
    QCoreApplication::installTranslator(translator.get());
    installed() = std::move(translator);
    return true;
}

void LyqTranslations::remove() {
    if (installed() && QCoreApplication::instance()) {
        QCoreApplication::removeTranslator(installed().get());
    }
    installed().reset();
}
