#include <colortable/viewport/LegendGlScope_p.h>
#include <colortable/viewport/LegendPlacement.h>
#include <colortable/viewport/LyrColorLookupTableRenderDriver.h>
#include <colortable/viewport/RenderDriver_p.h>
#include <lyr_opengl/LyrTextureGL.h>
#include <lys_core/LyqAnnotation.h>

#include <GL/gl.h>

#include <array>
#include <exception>

// What happens while a view is painted: the images of the legends are drawn.

using namespace lys::viewport;

namespace {

/** Makes the texture of an image, in the lower left of a texture with powers of two. */
bool upload(LyrTextureGL& texture, const QImage& image) {
    if (!texture.create(GL_TEXTURE_2D, GL_RGBA8, textureLength(image.width()), textureLength(image.height()), 1,
                        GL_TEXTURE0, 0)) {
        return false;
    }
    PixelBytes pixels;
    if (!keyedPixels(image, pixels)) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
    texture.bind();
    texture.setFilter(GL_NEAREST, GL_NEAREST);
    texture.setEnvironment(GL_REPLACE);
    texture.upload(0, 0, image.width(), image.height(), GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    texture.finish();
    texture.unbind();
    glFlush();
    return true;
}

/** The image on its frame: row 0 of the image, t = 0, lies on top. */
void drawQuad(LyrTextureGL& texture, const QImage& image, const std::array<LyrVector3<float>, 4>& corners) {
    const float s = static_cast<float>(image.width()) / static_cast<float>(texture.getWidth());
    const float t = static_cast<float>(image.height()) / static_cast<float>(texture.getHeight());
    const std::array<LyrVector2<float>, 4> places = {{{0.0f, t}, {s, t}, {s, 0.0f}, {0.0f, 0.0f}}};
    texture.bind();
    glBegin(GL_QUADS);
    for (std::size_t i = 0; i < places.size(); ++i) {
        glTexCoord2f(places[i].x, places[i].y);
        glVertex3f(corners[i].x, corners[i].y, corners[i].z);
    }
    glEnd();
    texture.unbind();
}

bool drawLegend(LegendGlScope& scope, LyqAnnotation& annotation, const Viewport& viewport) {
    const QRect frame = annotation.frameGeometry();
    const QImage image = annotation.getImage();
    LyrTextureGL texture;
    if (!upload(texture, image)) {
        scope.popMatrices();  // then the texture goes, then the rest of the state is given back
        return false;
    }
    drawQuad(texture, image, quadCorners(frame, viewport));
    return true;
}

}  // namespace

bool LyrColorLookupTableRenderDriver::renderObject(long long pass, void*) {
    if (pass != mViewportNode->getOverlayPass(this)) {
        return true;
    }
    const Viewport viewport = viewportOf(*mViewportNode);
    const bool drawable = isPlausible(viewport) && !viewport.isEmpty();
    LegendGlScope scope;
    bool done = scope.isReady();
    try {
        for (long long i = 0; done && drawable && i < mEntries.size(); ++i) {
            LyrObject* object = mEntries[i].annotation.get();
            auto* annotation = dynamic_cast<LyqAnnotation*>(object);
            if (object && !annotation) {
                reportWrongType(object);
            }
            done = !annotation || !mEntries[i].visible || drawLegend(scope, *annotation, viewport);
        }
    } catch (const std::exception&) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
        done = false;
    }
    return done;
}
