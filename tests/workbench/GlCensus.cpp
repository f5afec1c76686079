#include "workbench/GlCensus.h"

#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>

#include <algorithm>

namespace {

using Gl = QOpenGLExtraFunctions;

/** Where names are given out again, the least free ones come first, and so few are in use at once. */
constexpr GLuint LEAST_RANGE = 4096;

/** Objects among the names up to one that was given out just now. */
template <class Exists>
int countUpTo(GLuint newest, const Exists& exists) {
    int found = 0;
    for (GLuint name = 1; name <= std::max(newest, LEAST_RANGE); ++name) {
        found += exists(name) ? 1 : 0;
    }
    return found;
}

int count(Gl& gl, void (Gl::*make)(GLsizei, GLuint*), void (Gl::*drop)(GLsizei, const GLuint*),
          GLboolean (Gl::*exists)(GLuint)) {
    GLuint newest = 0;
    (gl.*make)(1, &newest);
    (gl.*drop)(1, &newest);
    return countUpTo(newest, [&](GLuint name) { return (gl.*exists)(name); });
}

int countPrograms(Gl& gl) {
    const GLuint newest = gl.glCreateProgram();
    gl.glDeleteProgram(newest);
    return countUpTo(newest, [&](GLuint name) { return gl.glIsProgram(name) || gl.glIsShader(name); });
}

}  // namespace

GlCensus GlCensus::take() {
    Gl& gl = *QOpenGLContext::currentContext()->extraFunctions();
    return {{count(gl, &Gl::glGenTextures, &Gl::glDeleteTextures, &Gl::glIsTexture),
             count(gl, &Gl::glGenBuffers, &Gl::glDeleteBuffers, &Gl::glIsBuffer),
             count(gl, &Gl::glGenRenderbuffers, &Gl::glDeleteRenderbuffers, &Gl::glIsRenderbuffer), countPrograms(gl),
             count(gl, &Gl::glGenSamplers, &Gl::glDeleteSamplers, &Gl::glIsSampler),
             count(gl, &Gl::glGenFramebuffers, &Gl::glDeleteFramebuffers, &Gl::glIsFramebuffer),
             count(gl, &Gl::glGenVertexArrays, &Gl::glDeleteVertexArrays, &Gl::glIsVertexArray)}};
}

std::string GlCensus::text() const {
    constexpr std::array<const char*, KINDS> NAMES = {
        "textures", "buffers", "renderbuffers", "programs and shaders", "samplers", "framebuffers", "vertex arrays"};
    std::string all;
    for (std::size_t i = 0; i < KINDS; ++i) {
        all += (i == 0 ? "" : ", ") + std::to_string(counts[i]) + " " + NAMES[i];
    }
    return all;
}
