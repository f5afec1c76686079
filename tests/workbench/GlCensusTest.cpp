#include "workbench/GlCensus.h"

#include "OpenWorkbench.h"

#include <gtest/gtest.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>

TEST(GlCensus, tells_each_object_that_is_there_and_none_that_is_gone) {
    const ApplicationWithOpenGL application;
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    ASSERT_TRUE(context.create());
    ASSERT_TRUE(context.makeCurrent(&surface));
    QOpenGLExtraFunctions& gl = *context.extraFunctions();
    const GlCensus before = GlCensus::take();
    EXPECT_EQ(GlCensus::take(), before);
    std::array<GLuint, 3> textures{};
    gl.glGenTextures(3, textures.data());
    for (const GLuint name : textures) {
        gl.glBindTexture(GL_TEXTURE_2D, name);
    }
    GLuint buffer = 0;
    gl.glGenBuffers(1, &buffer);
    gl.glBindBuffer(GL_ARRAY_BUFFER, buffer);
    GLuint framebuffer = 0;
    gl.glGenFramebuffers(1, &framebuffer);
    gl.glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    const GLuint program = gl.glCreateProgram();
    GlCensus expected = before;
    expected.counts[0] += 3;
    expected.counts[1] += 1;
    expected.counts[3] += 1;
    expected.counts[5] += 1;
    EXPECT_EQ(GlCensus::take(), expected) << GlCensus::take().text();
    gl.glDeleteTextures(3, textures.data());
    gl.glDeleteBuffers(1, &buffer);
    gl.glDeleteFramebuffers(1, &framebuffer);
    gl.glDeleteProgram(program);
    EXPECT_EQ(GlCensus::take(), before);
}
