#include <lyr_opengl/LyrTextureGL.h>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

namespace {

/** Errors of whoever drew before are no failure of ours. A lost context reports for ever, so this ends by itself. */
void drainErrors() {
    for (int i = 0; i < 32 && glGetError() != GL_NO_ERROR; ++i) {
    }
}

bool fitsProxy(GLint internalFormat, GLsizei width, GLsizei height, GLint border) {
    glTexImage2D(GL_PROXY_TEXTURE_2D, 0, internalFormat, width, height, border, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    GLint accepted = 0;
    glGetTexLevelParameteriv(GL_PROXY_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &accepted);
    return glGetError() == GL_NO_ERROR && accepted == width;
}

}  // namespace

LyrTextureGL::~LyrTextureGL() {
    destroy();
}

bool LyrTextureGL::create(unsigned int target, int internalFormat, int width, int height, int levels, unsigned int unit,
                          int border) {
    destroy();
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    drainErrors();
    if (target != GL_TEXTURE_2D || width <= 0 || height <= 0 || width > limit || height > limit || levels <= 0 ||
        !fitsProxy(internalFormat, width, height, border)) {
        drainErrors();
        return false;
    }
    GLuint name = 0;
    glGenTextures(1, &name);
    if (name == 0) {
        return false;
    }
    mTarget = target;
    mUnit = unit;
    mName = name;
    mWidth = width;
    mHeight = height;
    mLevels = levels;
    bind();
    for (int level = 0; level < levels; ++level) {
        glTexImage2D(target, level, internalFormat, width > 1 << level ? width >> level : 1,
                     height > 1 << level ? height >> level : 1, border, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    }
    unbind();
    if (glGetError() != GL_NO_ERROR) {
        destroy();
        return false;
    }
    return true;
}

void LyrTextureGL::destroy() {
    if (mName != 0) {
        const GLuint name = mName;
        glDeleteTextures(1, &name);
        mName = 0;
    }
    mWidth = 0;
    mHeight = 0;
    mLevels = 0;
}

void LyrTextureGL::bind() {
    glActiveTexture(mUnit);
    glBindTexture(mTarget, mName);
}

void LyrTextureGL::unbind() {
    glActiveTexture(mUnit);
    glBindTexture(mTarget, 0);
}

void LyrTextureGL::setFilter(int magnification, int minification) {
    glTexParameteri(mTarget, GL_TEXTURE_MAG_FILTER, magnification);
    glTexParameteri(mTarget, GL_TEXTURE_MIN_FILTER, minification);
}

void LyrTextureGL::setEnvironment(int mode) {
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, mode);
}

bool LyrTextureGL::upload(int x, int y, int width, int height, unsigned int format, unsigned int type,
                          const void* data) {
    if (!data || x < 0 || y < 0 || width <= 0 || height <= 0 || width > mWidth - x || height > mHeight - y) {
        return false;
    }
    glTexSubImage2D(mTarget, 0, x, y, width, height, format, type, data);
    return true;
}

void LyrTextureGL::finish() {
    glTexParameteri(mTarget, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(mTarget, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(mTarget, GL_TEXTURE_BASE_LEVEL, 0);
    glTexParameteri(mTarget, GL_TEXTURE_MAX_LEVEL, mLevels > 0 ? mLevels - 1 : 0);
}
