// Before the toolkit includes the same headers.
#define GL_GLEXT_PROTOTYPES

#include <GL/gl.h>
#include <GL/glext.h>

#include <lyr_opengl/LyrTextureGL.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>
#include <colortable/viewport/opengl/GlTarget.h>

#include <array>
#include <memory>
#include <vector>

namespace {

class TextureGL : private ToolkitApplication, public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(target.isValid()) << "no OpenGL of the compatibility profile";
        glActiveTexture(GL_TEXTURE0);
    }
    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }

    bool create(int width, int height, int levels = 1, unsigned int unit = GL_TEXTURE0) {
        return texture.create(GL_TEXTURE_2D, GL_RGBA8, width, height, levels, unit, 0);
    }
    static int value(GLenum name) {
        GLint result = -1;
        glGetIntegerv(name, &result);
        return result;
    }
    static int levelValue(int level, GLenum name) {
        GLint result = -1;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, level, name, &result);
        return result;
    }
    static int parameter(GLenum name) {
        GLint result = -1;
        glGetTexParameteriv(GL_TEXTURE_2D, name, &result);
        return result;
    }

    GlTarget target{8, 8};
    LyrTextureGL texture;
};

}  // namespace

TEST_F(TextureGL, has_the_size_and_format_that_were_asked_for) {
    ASSERT_TRUE(create(64, 32));
    EXPECT_EQ(texture.getWidth(), 64);
    EXPECT_EQ(texture.getHeight(), 32);
    EXPECT_EQ(value(GL_TEXTURE_BINDING_2D), 0);
    texture.bind();
    EXPECT_EQ(value(GL_TEXTURE_BINDING_2D), static_cast<int>(texture.getName()));
    EXPECT_EQ(levelValue(0, GL_TEXTURE_WIDTH), 64);
    EXPECT_EQ(levelValue(0, GL_TEXTURE_HEIGHT), 32);
    EXPECT_EQ(levelValue(0, GL_TEXTURE_INTERNAL_FORMAT), GL_RGBA8);
    texture.unbind();
    EXPECT_EQ(value(GL_TEXTURE_BINDING_2D), 0);
}

TEST_F(TextureGL, halves_its_levels_down_to_one_pixel) {
    ASSERT_TRUE(create(8, 2, 3));
    texture.bind();
    texture.finish();
    EXPECT_EQ(levelValue(1, GL_TEXTURE_WIDTH), 4);
    EXPECT_EQ(levelValue(1, GL_TEXTURE_HEIGHT), 1);
    EXPECT_EQ(levelValue(2, GL_TEXTURE_WIDTH), 2);
    EXPECT_EQ(levelValue(2, GL_TEXTURE_HEIGHT), 1);
    EXPECT_EQ(levelValue(3, GL_TEXTURE_WIDTH), 0);
    EXPECT_EQ(parameter(GL_TEXTURE_MAX_LEVEL), 2);
    texture.unbind();
}

TEST_F(TextureGL, is_not_made_of_a_size_or_kind_that_cannot_be) {
    ASSERT_TRUE(create(4, 4));
    const GLuint before = texture.getName();
    const int limit = value(GL_MAX_TEXTURE_SIZE);
    const std::array<std::array<int, 2>, 6> sizes = {
        {{0, 4}, {4, 0}, {-1, 4}, {4, -1}, {limit + 1, 4}, {4, limit + 1}}};
    for (const auto& size : sizes) {
        EXPECT_FALSE(create(size[0], size[1])) << size[0] << ' ' << size[1];
        EXPECT_EQ(texture.getName(), 0u);
        EXPECT_EQ(texture.getWidth(), 0);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    EXPECT_EQ(glIsTexture(before), GL_FALSE);  // what was there is gone
    EXPECT_FALSE(create(4, 4, 0));
    EXPECT_FALSE(texture.create(GL_TEXTURE_3D, GL_RGBA8, 4, 4, 1, GL_TEXTURE0, 0));
    EXPECT_FALSE(texture.create(GL_TEXTURE_2D, 12345, 4, 4, 1, GL_TEXTURE0, 0));
    EXPECT_EQ(texture.getName(), 0u);
}

TEST_F(TextureGL, takes_an_error_of_somebody_else_for_no_failure) {
    glEnable(GL_TEXTURE_WIDTH);  // nothing that can be switched
    EXPECT_TRUE(create(4, 4));
}

TEST_F(TextureGL, takes_pixels_into_a_part_of_it) {
    ASSERT_TRUE(create(4, 2));
    texture.bind();
    const std::vector<unsigned char> zeros(4 * 2 * 4, 0);
    ASSERT_TRUE(texture.upload(0, 0, 4, 2, GL_RGBA, GL_UNSIGNED_BYTE, zeros.data()));
    const std::array<unsigned char, 8> two = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_TRUE(texture.upload(2, 1, 2, 1, GL_RGBA, GL_UNSIGNED_BYTE, two.data()));
    std::vector<unsigned char> expected = zeros;
    std::copy(two.begin(), two.end(), expected.begin() + (4 + 2) * 4);
    std::vector<unsigned char> found(expected.size());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, found.data());
    EXPECT_EQ(found, expected);
    texture.unbind();
}

TEST_F(TextureGL, refuses_pixels_outside_of_it_and_none_at_all) {
    ASSERT_TRUE(create(4, 2));
    texture.bind();
    const std::vector<unsigned char> bytes(256, 9);
    const std::array<std::array<int, 4>, 8> regions = {{{-1, 0, 2, 1},
                                                        {0, -1, 2, 1},
                                                        {3, 0, 2, 1},
                                                        {0, 1, 1, 2},
                                                        {0, 0, 0, 1},
                                                        {0, 0, 1, 0},
                                                        {4, 0, 1, 1},
                                                        {0, 0, 5, 2}}};
    for (const auto& at : regions) {
        EXPECT_FALSE(texture.upload(at[0], at[1], at[2], at[3], GL_RGBA, GL_UNSIGNED_BYTE, bytes.data()));
    }
    EXPECT_FALSE(texture.upload(2147483647, 0, 2147483647, 1, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data()));
    EXPECT_FALSE(texture.upload(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, nullptr));
    texture.unbind();
}

TEST_F(TextureGL, goes_with_its_object_or_when_told) {
    auto other = std::make_unique<LyrTextureGL>();
    ASSERT_TRUE(other->create(GL_TEXTURE_2D, GL_RGBA8, 4, 4, 1, GL_TEXTURE0, 0));
    const GLuint name = other->getName();
    EXPECT_EQ(glIsTexture(name), GL_TRUE);
    other.reset();
    EXPECT_EQ(glIsTexture(name), GL_FALSE);
    ASSERT_TRUE(create(4, 4));
    const GLuint own = texture.getName();
    texture.destroy();
    EXPECT_EQ(glIsTexture(own), GL_FALSE);
    EXPECT_EQ(texture.getName(), 0u);
    texture.destroy();
}

TEST_F(TextureGL, is_bound_to_its_unit) {
    ASSERT_TRUE(create(4, 4, 1, GL_TEXTURE1));
    glActiveTexture(GL_TEXTURE0);
    texture.bind();
    EXPECT_EQ(value(GL_ACTIVE_TEXTURE), GL_TEXTURE1);
    EXPECT_EQ(value(GL_TEXTURE_BINDING_2D), static_cast<int>(texture.getName()));
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(value(GL_TEXTURE_BINDING_2D), 0);
    texture.unbind();
    EXPECT_EQ(value(GL_ACTIVE_TEXTURE), GL_TEXTURE1);
    EXPECT_EQ(value(GL_TEXTURE_BINDING_2D), 0);
}

TEST_F(TextureGL, passes_filters_and_environment_on_and_clamps_at_its_edges) {
    ASSERT_TRUE(create(4, 4));
    texture.bind();
    texture.setFilter(GL_LINEAR, GL_NEAREST);
    texture.setEnvironment(GL_REPLACE);
    texture.finish();
    EXPECT_EQ(parameter(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(parameter(GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(GL_TEXTURE_WRAP_T), GL_CLAMP_TO_EDGE);
    EXPECT_EQ(parameter(GL_TEXTURE_MAX_LEVEL), 0);
    GLint mode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &mode);
    EXPECT_EQ(mode, GL_REPLACE);
    texture.unbind();
}
