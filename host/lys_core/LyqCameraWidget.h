#pragma once

#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrVector3.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <QImage>
#include <QPointF>

#include <memory>

class LyrWorkspace;

namespace LyrSceneGraph {
class CameraTransform;
class ViewScene;
}  // namespace LyrSceneGraph

/** A view with a camera of its own, linked by one property, that draws with OpenGL what the camera renders: the layers
 * of the application's workspace and whatever else is put into the camera's list.
 *
 *  What a view shows is prepared in one posted event for all changes since the last one, and drawn only if something
 * has to be drawn anew. A preparation in which a driver reported a change is followed by another one, four at most.
 * Where there is no OpenGL with fixed functions, the view says so in words and makes no drivers. The log says it in
 * the category "lys.views". */
class LYS_CORE_EXPORT LyqCameraWidget : public LyqWorkspaceWidget {
    Q_OBJECT

public:
    ~LyqCameraWidget() override;

    /** Has the toolkit make contexts that views can draw with, and share what is in them between windows. To be called
     * before the QApplication is made. */
    static void prepareOpenGL();
    /** Why views cannot draw, in words for the user; empty if they can. */
    static QString openGLProblem();

    LyrObject* camera() const { return mCamera.getTarget(); }
    const LyrSceneGraph::CameraTransform& cameraTransform() const;
    /** The view's nodes and drivers. */
    LyrSceneGraph::ViewScene& scene() const;
    /** False: the view cannot draw. */
    bool hasOpenGL() const;

    /** Shows all of the scene, from the first direction. */
    void resetView();
    /** Asks for a frame; those of one turn of the event loop are one. */
    void scheduleFrame();
    /** Does the frames that are asked for now, hidden views included, so that a picture taken next is up to date. */
    void finishFrames();
    /** The view as it is now, in pixels of its framebuffer; null without OpenGL or pixels. */
    QImage getImage();

    bool iocCallback(Message& message) override;
    /** The place in the scene at a position of the widget; false if there is none. */
    virtual bool findPlace(const QPointF& position, LyrVector3<float>& place) = 0;

Q_SIGNALS:
    /** The view was drawn. Its context is current: do nothing here that draws or destroys. */
    void frameDrawn();
    /** The user wants this view alone, or all of them again. */
    void maximizeRequested();
    /** The place in the scene under the mouse, in millimetres; not `inside` where there is none. */
    void positionHovered(const LyrVector3<float>& position, bool inside);

protected:
    explicit LyqCameraWidget(Lyrenum cameraProperty);

    LyrSceneGraph::CameraTransform& transform();
    LyrWorkspace* workspace() const;
    /** The camera or the marks changed: the view has to be drawn anew. */
    void redraw();
    /** From a position in the widget to one in the framebuffer. */
    LyrVector2<float> toFramebuffer(const QPointF& position) const;
    /** Pixels for a length that is given for 96 dots per inch, at least 1. */
    int scaledPixels(int pixels) const;
    /** The depth of what was drawn under a position, in device coordinates; 1 for nothing. */
    float depthAt(const QPointF& position);
    void hover(const QPointF& position);

    /** The workspace is another one, or its property changed. */
    virtual void workspaceChanged(Lyrenum property);
    /** Draws the view's marks, with the context current. */
    virtual void drawMarks() = 0;
    /** The left button went down, or was dragged by some pixels. */
    virtual void leftPressed(const QPointF& position);
    virtual void leftDragged(const QPointF& position, const LyrVector2<float>& pixels) = 0;

    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /** Zooms by the wheel's steps around the mouse. */
    void zoomByWheel(const QWheelEvent& event);

private:
    struct Private;
    void makeSurface();
    void showProblem(const QString& problem);
    void scheduleFrameAt(int place);
    void runFrame();
    void placeChildren();
    bool updateCamera();
    void followWorkspace();
    void followLayers();
    void drawFrame();

    LyrObjectParentLinkOP mCamera;
    std::unique_ptr<Private> d;
};
