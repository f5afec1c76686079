#pragma once

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

namespace LyrSceneGraph {
class CameraTransform;
}

namespace LyrRendering {

/** Forgets errors of whoever drew before. A lost context reports for ever, so this ends by itself. */
void drainGlErrors();

/** Puts the context into the state in which every driver starts: the camera's matrices and viewport, depth test in
 * scene views, colours written but not the framebuffer's alpha, everything else off. */
void applyGlBaseline(const LyrSceneGraph::CameraTransform& camera);

/** Saves attributes, client attributes and matrices, and brings them back at the end of the scope. */
class GlScope {
public:
    GlScope();
    ~GlScope();
    GlScope(const GlScope&) = delete;
    GlScope& operator=(const GlScope&) = delete;

    /** False: a stack of the context is full, and nothing was saved. */
    bool isOpen() const { return mOpen; }
    /** Draws in normalised device coordinates from here on. */
    void useDeviceCoordinates();

private:
    bool mOpen = false;
    GLint mMatrixMode = GL_MODELVIEW;
};

}  // namespace LyrRendering
