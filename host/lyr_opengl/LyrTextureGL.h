#pragma once

#include <lyr_opengl/LyrOpenglExport.h>

/** A texture of the current OpenGL context. All operations need that context to be current, the destructor as well;
 * they leave the texture bound to its target only between bind() and unbind(). */
class LYR_OPENGL_EXPORT LyrTextureGL {
public:
    LyrTextureGL() = default;
    ~LyrTextureGL();
    LyrTextureGL(const LyrTextureGL&) = delete;
    LyrTextureGL& operator=(const LyrTextureGL&) = delete;

    /** Makes a 2D texture without content. False, and nothing made, for a size that is not positive or above the
     * context's limit, for one that the context refuses (proxy texture), or when no name is given out. Stale OpenGL
     * errors are drained first, and are not taken for a failure.
     *  @param target          GL_TEXTURE_2D
     *  @param internalFormat  e.g. GL_RGBA8
     *  @param unit            e.g. GL_TEXTURE0 */
    bool create(unsigned int target, int internalFormat, int width, int height, int levels, unsigned int unit,
                int border);
    void destroy();

    void bind();
    void unbind();
    /** While bound. GL_NEAREST, GL_LINEAR … */
    void setFilter(int magnification, int minification);
    /** While bound: how the texture's colour meets that of the fragment, e.g. GL_REPLACE. */
    void setEnvironment(int mode);
    /** While bound: replaces a part of level 0. False on a region outside of the texture or null data. */
    bool upload(int x, int y, int width, int height, unsigned int format, unsigned int type, const void* data);
    /** While bound: ends the set-up (clamps at the edges, limits the levels). */
    void finish();

    unsigned int getName() const noexcept { return mName; }
    int getWidth() const noexcept { return mWidth; }
    int getHeight() const noexcept { return mHeight; }

private:
    unsigned int mTarget = 0;
    unsigned int mUnit = 0;
    unsigned int mName = 0;
    int mWidth = 0;
    int mHeight = 0;
    int mLevels = 0;
};
