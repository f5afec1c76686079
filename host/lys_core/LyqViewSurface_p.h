#pragma once

#include <lyr_opengl/LyrViewScene.h>

#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QPointer>

#include <functional>

class QSurface;

/** The part of a view that OpenGL draws into. Takes no input: that is the view's. */
class LyqViewSurface : public QOpenGLWidget {
    Q_OBJECT

public:
    /** @param draw     draws with the context current
     *  @param release  the context, which is current, is about to go */
    LyqViewSurface(QWidget* parent, std::function<void()> draw, std::function<void()> release);
    ~LyqViewSurface() override;

    LyrSceneGraph::ViewScene::Surface* access() { return &mAccess; }

    /** The size of the framebuffer in pixels. */
    QSize framebufferSize() const { return size() * devicePixelRatioF(); }
    /** The depth of a pixel of the framebuffer, counted from the top left corner, in device coordinates; 1, the
     * farthest one, where nothing was drawn. */
    float depthAt(const QPoint& pixel);

Q_SIGNALS:
    /** The context that was given cannot draw views. */
    void unusable(const QString& problem);

protected:
    void initializeGL() override;
    void paintGL() override;

private:
    /** Makes the context current, and afterwards the one that was before. */
    class Access : public LyrSceneGraph::ViewScene::Surface {
    public:
        explicit Access(LyqViewSurface& widget) : mWidget(widget) {}
        bool makeCurrent() override;
        void doneCurrent() override;

    private:
        LyqViewSurface& mWidget;
        QPointer<QOpenGLContext> mBefore;
        QSurface* mSurfaceBefore = nullptr;
    };

    Access mAccess{*this};
    std::function<void()> mDraw;
    std::function<void()> mRelease;
    bool mUsable = true;
};
