#include <lyr_opengl/LyrCameraTransform.h>
#include <lyr_opengl/LyrGlScope_p.h>

#include <cmath>
#include <initializer_list>

namespace {

bool hasRoom(GLenum depth, GLenum limit) {
    GLint used = 0;
    GLint most = 0;
    glGetIntegerv(depth, &used);
    glGetIntegerv(limit, &most);
    return used < most;
}

void disableAll() {
    for (const GLenum what : std::initializer_list<GLenum>{
             GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_COLOR_MATERIAL, GL_CULL_FACE, GL_FOG, GL_LIGHTING,
             GL_LINE_STIPPLE, GL_NORMALIZE, GL_POLYGON_OFFSET_FILL, GL_POLYGON_STIPPLE, GL_SCISSOR_TEST,
             GL_STENCIL_TEST, GL_TEXTURE_1D, GL_TEXTURE_2D}) {
        glDisable(what);
    }
}

}  // namespace

namespace LyrRendering {

void drainGlErrors() {
    for (int i = 0; i < 32 && glGetError() != GL_NO_ERROR; ++i) {
    }
}

void applyGlBaseline(const LyrSceneGraph::CameraTransform& camera) {
    const LyrVector2<float> size = camera.getViewportSize();
    glViewport(0, 0, static_cast<GLsizei>(std::lround(size.x)), static_cast<GLsizei>(std::lround(size.y)));
    glUseProgram(0);
    glActiveTexture(GL_TEXTURE0);
    disableAll();
    const bool isScene = camera.getKind() == LyrSceneGraph::CameraTransform::Kind::Scene;
    (isScene ? glEnable : glDisable)(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glShadeModel(GL_SMOOTH);
    glLineWidth(1.0f);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(camera.getProjection().data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(camera.getModelView().data());
}

GlScope::GlScope() {
    if (!hasRoom(GL_ATTRIB_STACK_DEPTH, GL_MAX_ATTRIB_STACK_DEPTH) ||
        !hasRoom(GL_CLIENT_ATTRIB_STACK_DEPTH, GL_MAX_CLIENT_ATTRIB_STACK_DEPTH) ||
        !hasRoom(GL_PROJECTION_STACK_DEPTH, GL_MAX_PROJECTION_STACK_DEPTH) ||
        !hasRoom(GL_MODELVIEW_STACK_DEPTH, GL_MAX_MODELVIEW_STACK_DEPTH)) {
        return;
    }
    mOpen = true;
    glGetIntegerv(GL_MATRIX_MODE, &mMatrixMode);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
}

GlScope::~GlScope() {
    if (!mOpen) {
        return;
    }
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glPopClientAttrib();
    glPopAttrib();
    glMatrixMode(static_cast<GLenum>(mMatrixMode));
}

void GlScope::useDeviceCoordinates() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

}  // namespace LyrRendering
