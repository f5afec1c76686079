#include "GuiSession.h"

#include "Failure.h"

#include <lys_core/LyqTranslations.h>

#include <QLocale>

#include <cstdio>

namespace lys::cli {

namespace {

/** The toolkit's remarks about the desktop are of no use here; what makes it end is. */
void report(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", message.toUtf8().constData());
    }
}

QLocale localeOf(const std::string& name) {
    if (name.empty() || name == "C") {
        return QLocale::c();
    }
    const QLocale locale(QString::fromStdString(name));
    if (locale.language() == QLocale::C) {
        throwUnusable("--locale " + name + ": this locale is not known; give a language and a country such as de_DE");
    }
    return locale;
}

}  // namespace

GuiSession::Environment::Environment() {
    qInstallMessageHandler(report);
    qputenv("QT_QPA_PLATFORM", "offscreen");
}

GuiSession::~GuiSession() {
    LyqTranslations::remove();
}

GuiSession::GuiSession(const std::string& localeName) : mApplication(mArgumentCount, mArguments) {
    const QLocale locale = localeOf(localeName);
    QLocale::setDefault(locale);
    LyqTranslations::install(locale);
}

}  // namespace lys::cli
