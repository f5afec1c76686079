#pragma once

#include <QOffscreenSurface>
#include <QOpenGLContext>

#include <memory>
#include <vector>

/** A place to draw into by the fixed functions: a context of the compatibility profile with a framebuffer of a given
 * size, and a second context that reads it, whatever state the first is in. */
class GlTarget {
public:
    struct Color {
        int red = 0;
        int green = 0;
        int blue = 0;
        friend bool operator==(const Color&, const Color&) = default;
    };

    GlTarget(int width, int height);
    ~GlTarget();
    GlTarget(const GlTarget&) = delete;
    GlTarget& operator=(const GlTarget&) = delete;

    /** False where there is no OpenGL of the compatibility profile. */
    bool isValid() const { return mValid; }
    void clear(const Color& color) const;
    /** Row 0 on top. The drawing context is current again afterwards. */
    void read();
    Color at(int x, int y) const {
        return mPixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth) + static_cast<std::size_t>(x)];
    }

private:
    int mWidth;
    int mHeight;
    bool mValid = false;
    QOffscreenSurface mSurface;
    std::unique_ptr<QOpenGLContext> mDrawing;
    std::unique_ptr<QOpenGLContext> mReading;
    unsigned int mTexture = 0;
    unsigned int mFramebuffer = 0;
    unsigned int mDepth = 0;
    std::vector<Color> mPixels;
};
