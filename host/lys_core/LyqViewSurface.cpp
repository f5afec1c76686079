#include <lys_core/LyqOpenGLProbe_p.h>
#include <lys_core/LyqViewSurface_p.h>

#include <QOpenGLFunctions>

#include <utility>

LyqViewSurface::LyqViewSurface(QWidget* parent, std::function<void()> draw, std::function<void()> release)
    : QOpenGLWidget(parent), mDraw(std::move(draw)), mRelease(std::move(release)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

LyqViewSurface::~LyqViewSurface() {
    // The context goes with the base class, when there is nobody left to call.
    if (context()) {
        context()->disconnect(this);
    }
}

void LyqViewSurface::initializeGL() {
    // Called again when the widget moves to a window whose contexts share nothing with the one before.
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, [this] {
        if (mAccess.makeCurrent()) {
            mRelease();
            mAccess.doneCurrent();
        }
    });
    const QString problem = LyqOpenGLProbe::problemOf(*context());
    mUsable = problem.isEmpty();
    if (!mUsable) {
        Q_EMIT unusable(problem);
    }
}

void LyqViewSurface::paintGL() {
    if (mUsable) {
        mDraw();
    }
}

float LyqViewSurface::depthAt(const QPoint& pixel) {
    float depth = 1.0f;
    const QSize size = framebufferSize();
    if (QRect(QPoint(), size).contains(pixel) && mAccess.makeCurrent()) {
        context()->functions()->glReadPixels(pixel.x(), size.height() - 1 - pixel.y(), 1, 1, GL_DEPTH_COMPONENT,
                                             GL_FLOAT, &depth);
        mAccess.doneCurrent();
    }
    return depth * 2.0f - 1.0f;
}

bool LyqViewSurface::Access::makeCurrent() {
    if (!mWidget.isValid()) {
        return false;
    }
    mBefore = QOpenGLContext::currentContext();
    mSurfaceBefore = mBefore ? mBefore->surface() : nullptr;
    mWidget.makeCurrent();
    return QOpenGLContext::currentContext() == mWidget.context();
}

void LyqViewSurface::Access::doneCurrent() {
    if (mBefore && mBefore != mWidget.context()) {
        mBefore->makeCurrent(mSurfaceBefore);
    } else if (!mBefore) {
        mWidget.doneCurrent();
    }
    mBefore = nullptr;
}
