#include <lys_core/LyqOpenGLProbe_p.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QSurfaceFormat>

#include <optional>
#include <utility>

namespace {

QString text(const char* key) {
    return QCoreApplication::translate("LyqCameraWidget", key);
}

/** Makes the context that was current current again in the end. */
class CurrentContext {
public:
    CurrentContext() = default;
    ~CurrentContext() {
        if (mBefore) {
            mBefore->makeCurrent(mSurface);
        }
    }
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;

private:
    QOpenGLContext* mBefore = QOpenGLContext::currentContext();
    QSurface* mSurface = mBefore ? mBefore->surface() : nullptr;
};

QString probe(const QSurfaceFormat& format) {
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("offscreen") || platform == QLatin1String("minimal")) {
        return text(QT_TRANSLATE_NOOP("LyqCameraWidget",
                                      "The display platform “%1” cannot show OpenGL, so views stay empty. Start the "
                                      "program on a desktop, or with xvfb-run."))
            .arg(platform);
    }
    const CurrentContext before;
    QOpenGLContext context;
    context.setFormat(format);
    QOffscreenSurface surface;
    surface.setFormat(format);
    surface.create();
    if (!context.create() || !context.makeCurrent(&surface)) {
        return text(
            QT_TRANSLATE_NOOP("LyqCameraWidget",
                              "OpenGL could not be started, so views stay empty. Install a graphics driver with "
                              "OpenGL 2.1 or later, for example Mesa."));
    }
    QString found = LyqOpenGLProbe::problemOf(context);
    context.doneCurrent();
    return found;
}

}  // namespace

QString LyqOpenGLProbe::problem() {
    static std::optional<QSurfaceFormat> probed;
    static QString found;
    const QSurfaceFormat format = QSurfaceFormat::defaultFormat();
    if (!probed || *probed != format) {
        found = probe(format);
        probed = format;
    }
    return found;
}

QString LyqOpenGLProbe::problemOf(const QOpenGLContext& current) {
    // Core contexts answer the queries of fixed functions all the same, so what they say of themselves counts.
    const QSurfaceFormat format = current.format();
    const bool isCore = format.profile() == QSurfaceFormat::CoreProfile ||
                        (format.version() == std::pair(3, 1) && !current.hasExtension("GL_ARB_compatibility"));
    if (!current.isOpenGLES() && !isCore) {
        return {};
    }
    return text(
        QT_TRANSLATE_NOOP("LyqCameraWidget",
                          "This OpenGL offers its core profile only, but views need the compatibility profile, so "
                          "they stay empty. Install a driver that offers it, for example Mesa."));
}
