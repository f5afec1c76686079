#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_opengl/LyrViewMarks.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqViewFactory_p.h>
#include <lys_core/LyrWorkspace.h>

#include <QWheelEvent>

namespace {

/** Length of the axes in the corner, at 96 dots per inch. */
constexpr int AXES = 28;

}  // namespace

LyqSceneWidget::LyqSceneWidget() : LyqCameraWidget(Lyr::SceneCamera) {
    transform().setSceneView();
}

LyqSceneWidget::~LyqSceneWidget() {
    LyrMetaClass::prepareDestruction(this);
}

const LyrMetaClass& LyqSceneWidget::metaClass() {
    static const LyrMetaClass meta("LyqSceneWidget", sizeof(LyqSceneWidget), &LyqWorkspaceWidget::metaClass(),
                                   new LyqViewFactory<LyqSceneWidget>, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqSceneWidget::getMetaClass() const {
    return metaClass();
}

void LyqSceneWidget::drawMarks() {
    if (const LyrWorkspace* shown = workspace()) {
        LyrRendering::drawSceneBox(cameraTransform(), shown->getSceneMin(), shown->getSceneMax(),
                                   shown->getCrossPosition(), scaledPixels(1));
    }
    LyrRendering::drawAxes(cameraTransform(), scaledPixels(AXES), scaledPixels(1));
}

bool LyqSceneWidget::findPlace(const QPointF& position, LyrVector3<float>& place) {
    const float depth = depthAt(position);
    place = cameraTransform().widgetToWorld(toFramebuffer(position), depth);
    return depth < 1.0f;
}

void LyqSceneWidget::leftDragged(const QPointF&, const LyrVector2<float>& pixels) {
    transform().rotate(pixels);
    redraw();
}

void LyqSceneWidget::wheelEvent(QWheelEvent* event) {
    zoomByWheel(*event);
    event->accept();
}
