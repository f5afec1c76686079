#include <lyr_opengl/LyrGlScope_p.h>
#include <lyr_opengl/LyrViewMarks.h>

#include <cmath>

namespace {

using LyrSceneGraph::CameraTransform;
using Point = LyrVector2<float>;

void setColor(const LyrRGBA<float>& color) {
    glColor4f(color.red, color.green, color.blue, color.alpha);
}

void vertex(const CameraTransform& camera, const Point& widget) {
    const Point device = camera.widgetToDevice(widget);
    glVertex2f(device.x, device.y);
}

/** A rectangle of whole pixels. */
void fillRect(const CameraTransform& camera, const Point& min, const Point& max) {
    if (!(min.x < max.x && min.y < max.y)) {
        return;
    }
    glBegin(GL_QUADS);
    vertex(camera, {min.x, max.y});
    vertex(camera, max);
    vertex(camera, {max.x, min.y});
    vertex(camera, min);
    glEnd();
}

/** The first pixel of a line of some pixels around a place. */
float firstPixel(float place, int thickness) {
    return std::floor(place - static_cast<float>(thickness - 1) / 2.0f);
}

void edge(const LyrVector3<float>& a, const LyrVector3<float>& b) {
    glVertex3f(a.x, a.y, a.z);
    glVertex3f(b.x, b.y, b.z);
}

/** The border of the box's section across an axis. */
void section(const LyrVector3<float>& min, const LyrVector3<float>& max, int axis, float place) {
    const int first = CameraTransform::rightAxis(axis);
    LyrVector3<float> corners[4] = {min, min, max, max};
    corners[1][first] = max[first];
    corners[3][first] = min[first];
    for (LyrVector3<float>& corner : corners) {
        corner[axis] = place;
    }
    glBegin(GL_LINES);
    for (int i = 0; i < 4; ++i) {
        edge(corners[i], corners[(i + 1) % 4]);
    }
    glEnd();
}

/** The letter of an axis in strokes, in a square from -1 to 1. */
void drawLetter(const CameraTransform& camera, int axis, const Point& at, float size) {
    constexpr float STROKES[3][6][2] = {{{-1, -1}, {1, 1}, {-1, 1}, {1, -1}, {0, 0}, {0, 0}},
                                        {{-1, -1}, {0, 0}, {1, -1}, {0, 0}, {0, 0}, {0, 1}},
                                        {{-1, -1}, {1, -1}, {1, -1}, {-1, 1}, {-1, 1}, {1, 1}}};
    glBegin(GL_LINES);
    for (const auto& stroke : STROKES[axis]) {
        vertex(camera, {at.x + stroke[0] * size * 0.7f, at.y + stroke[1] * size});
    }
    glEnd();
}

}  // namespace

namespace LyrRendering {

LyrRGBA<float> planeColor(int axis) {
    constexpr LyrRGBA<float> COLORS[3] = {{0.91f, 0.36f, 0.36f}, {0.43f, 0.78f, 0.39f}, {0.38f, 0.60f, 0.95f}};
    return COLORS[axis == 0 || axis == 1 ? axis : 2];
}

void drawCrossHair(const CameraTransform& camera, const LyrVector3<float>& cross, int thickness, int gap) {
    GlScope scope;
    if (!scope.isOpen()) {
        return;
    }
    scope.useDeviceCoordinates();
    glDisable(GL_DEPTH_TEST);
    const LyrVector3<float> at = camera.worldToWidget(cross);
    const Point min = camera.getViewportMin();
    const Point max = camera.getViewportMax();
    const float left = firstPixel(at.x, thickness);
    const float top = firstPixel(at.y, thickness);
    const float right = left + static_cast<float>(thickness);
    const float bottom = top + static_cast<float>(thickness);
    const auto room = static_cast<float>(gap);
    setColor(planeColor(CameraTransform::rightAxis(camera.getAxis())));
    fillRect(camera, {left, min.y}, {right, top - room});
    fillRect(camera, {left, bottom + room}, {right, max.y});
    setColor(planeColor(CameraTransform::downAxis(camera.getAxis())));
    fillRect(camera, {min.x, top}, {left - room, bottom});
    fillRect(camera, {right + room, top}, {max.x, bottom});
}

void drawSceneBox(const CameraTransform&, const LyrVector3<float>& min, const LyrVector3<float>& max,
                  const LyrVector3<float>& cross, int thickness) {
    const GlScope scope;
    if (!scope.isOpen()) {
        return;
    }
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_FALSE);
    glLineWidth(static_cast<GLfloat>(thickness));
    for (int axis = 0; axis < 3; ++axis) {
        setColor(planeColor(axis));
        section(min, max, axis, cross[axis]);
    }
    glColor4f(0.45f, 0.47f, 0.50f, 1.0f);
    section(min, max, 2, min.z);
    section(min, max, 2, max.z);
    glBegin(GL_LINES);
    for (const bool isRight : {false, true}) {
        for (const bool isBack : {false, true}) {
            const float x = isRight ? max.x : min.x;
            const float y = isBack ? max.y : min.y;
            edge({x, y, min.z}, {x, y, max.z});
        }
    }
    glEnd();
}

void drawAxes(const CameraTransform& camera, int length, int thickness) {
    GlScope scope;
    if (!scope.isOpen()) {
        return;
    }
    scope.useDeviceCoordinates();
    glDisable(GL_DEPTH_TEST);
    glLineWidth(static_cast<GLfloat>(thickness));
    const CameraTransform::Matrix eye = camera.getModelView();
    const auto full = static_cast<float>(length);
    const Point origin{std::round(full * 1.5f) + 0.5f, camera.getViewportMax().y - std::round(full * 1.5f) - 0.5f};
    for (int axis = 0; axis < 3; ++axis) {
        const auto column = static_cast<std::size_t>(axis) * 4;
        const Point direction{eye[column], -eye[column + 1]};
        const float visible = std::hypot(direction.x, direction.y);
        if (visible < 0.1f) {
            continue;  // points at the eye, or away from it
        }
        setColor(planeColor(axis));
        glBegin(GL_LINES);
        vertex(camera, origin);
        vertex(camera, origin + direction * full);
        glEnd();
        drawLetter(camera, axis, origin + direction * (full + full * 0.35f / visible), full * 0.16f);
    }
}

}  // namespace LyrRendering
