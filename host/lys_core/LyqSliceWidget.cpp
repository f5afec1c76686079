#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_opengl/LyrViewMarks.h>
#include <lys_core/LyqSliceWidget.h>
#include <lys_core/LyqViewFactory_p.h>
#include <lys_core/LyrWorkspace.h>

#include <QKeyEvent>
#include <QWheelEvent>

#include <algorithm>

namespace {

/** One step of an ordinary wheel, in eighths of a degree. */
constexpr int WHEEL_STEP = 120;
constexpr int PAGE = 10;
/** Half the gap in the cross-hair, at 96 dots per inch. */
constexpr int GAP = 8;

}  // namespace

LyqSliceWidget::LyqSliceWidget() : LyqCameraWidget(Lyr::SliceCamera) {
    transform().setSliceView(2);
    workspaceChanged(-1);
}

// Whoever deletes a view, hooks hear of it while it is still whole.
LyqSliceWidget::~LyqSliceWidget() {
    LyrMetaClass::prepareDestruction(this);
}

const LyrMetaClass& LyqSliceWidget::metaClass() {
    static const LyrMetaClass meta("LyqSliceWidget", sizeof(LyqSliceWidget), &LyqWorkspaceWidget::metaClass(),
                                   new LyqViewFactory<LyqSliceWidget>, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqSliceWidget::getMetaClass() const {
    return metaClass();
}

int LyqSliceWidget::getSliceAxis() const {
    return cameraTransform().getAxis();
}

bool LyqSliceWidget::setSliceAxis(int axis) {
    if (axis < 0 || axis > 2) {
        return false;
    }
    if (axis != getSliceAxis()) {
        transform().setSliceView(axis);
        workspaceChanged(-1);
    }
    return true;
}

int LyqSliceWidget::getSliceCount() const {
    return mCount;
}

int LyqSliceWidget::getSliceIndex() const {
    return mIndex;
}

void LyqSliceWidget::setSliceIndex(int index) {
    LyrWorkspace* shown = workspace();
    const int wanted = std::clamp(index, 0, mCount - 1);
    if (!shown || wanted == mIndex) {
        return;
    }
    LyrVector3<float> cross = shown->getCrossPosition();
    cross[getSliceAxis()] = shown->getSlicePosition(getSliceAxis(), wanted);
    shown->setCrossPosition(cross);
}

void LyqSliceWidget::workspaceChanged(Lyrenum property) {
    LyqCameraWidget::workspaceChanged(property);
    followCross();
}

void LyqSliceWidget::followCross() {
    const LyrWorkspace* shown = workspace();
    if (!shown) {
        return;
    }
    const int axis = getSliceAxis();
    const float place = shown->getCrossPosition()[axis];
    const int index = shown->getSliceIndex(axis, place);
    const int count = shown->getSliceCount(axis);
    transform().setSlice(index, place);
    if (index != mIndex || count != mCount) {
        mIndex = index;
        mCount = count;
        Q_EMIT sliceChanged(index, count);
    }
}

void LyqSliceWidget::drawMarks() {
    if (const LyrWorkspace* shown = workspace()) {
        LyrRendering::drawCrossHair(cameraTransform(), shown->getCrossPosition(), scaledPixels(1), scaledPixels(GAP));
    }
}

bool LyqSliceWidget::findPlace(const QPointF& position, LyrVector3<float>& place) {
    place = cameraTransform().widgetToWorld(toFramebuffer(position));
    return workspace() && workspace()->isInScene(place);
}

void LyqSliceWidget::leftPressed(const QPointF& position) {
    if (LyrWorkspace* shown = workspace()) {
        shown->setCrossPosition(cameraTransform().widgetToWorld(toFramebuffer(position)));
    }
}

void LyqSliceWidget::leftDragged(const QPointF& position, const LyrVector2<float>&) {
    leftPressed(position);
}

void LyqSliceWidget::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        zoomByWheel(*event);
    } else {
        mWheel += event->angleDelta().y();
        setSliceIndex(mIndex + mWheel / WHEEL_STEP);
        mWheel %= WHEEL_STEP;
        hover(event->position());
    }
    event->accept();
}

void LyqSliceWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Up:
        case Qt::Key_Right:
            setSliceIndex(mIndex + 1);
            break;
        case Qt::Key_Down:
        case Qt::Key_Left:
            setSliceIndex(mIndex - 1);
            break;
        case Qt::Key_PageUp:
            setSliceIndex(mIndex + PAGE);
            break;
        case Qt::Key_PageDown:
            setSliceIndex(mIndex - PAGE);
            break;
        case Qt::Key_Home:
            setSliceIndex(0);
            break;
        case Qt::Key_End:
            setSliceIndex(mCount - 1);
            break;
        default:
            LyqCameraWidget::keyPressEvent(event);
    }
}
