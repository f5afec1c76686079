#include "GlState.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <cmath>
#include <sstream>

namespace {

// clang-format off
constexpr GLenum VALUES[] = {
    GL_ACCUM_CLEAR_VALUE, GL_ACTIVE_TEXTURE, GL_ALIASED_LINE_WIDTH_RANGE, GL_ALPHA_BIAS, GL_ALPHA_SCALE,
    GL_ALPHA_TEST_FUNC, GL_ALPHA_TEST_REF, GL_ARRAY_BUFFER_BINDING, GL_ATTRIB_STACK_DEPTH, GL_BLEND_COLOR,
    GL_BLEND_DST_ALPHA, GL_BLEND_DST_RGB, GL_BLEND_EQUATION_ALPHA, GL_BLEND_EQUATION_RGB, GL_BLEND_SRC_ALPHA,
    GL_BLEND_SRC_RGB, GL_BLUE_BIAS, GL_BLUE_SCALE, GL_CLAMP_FRAGMENT_COLOR, GL_CLAMP_READ_COLOR, GL_CLAMP_VERTEX_COLOR,
    GL_CLIENT_ACTIVE_TEXTURE, GL_CLIENT_ATTRIB_STACK_DEPTH, GL_CLIP_DEPTH_MODE, GL_CLIP_ORIGIN, GL_COLOR_CLEAR_VALUE,
    GL_COLOR_MATERIAL_FACE, GL_COLOR_MATERIAL_PARAMETER, GL_COLOR_WRITEMASK, GL_COPY_READ_BUFFER_BINDING,
    GL_COPY_WRITE_BUFFER_BINDING, GL_CULL_FACE_MODE, GL_CURRENT_COLOR, GL_CURRENT_FOG_COORD, GL_CURRENT_INDEX,
    GL_CURRENT_NORMAL, GL_CURRENT_PROGRAM, GL_CURRENT_RASTER_COLOR, GL_CURRENT_RASTER_POSITION,
    GL_CURRENT_RASTER_POSITION_VALID, GL_CURRENT_SECONDARY_COLOR, GL_DEPTH_BIAS, GL_DEPTH_CLEAR_VALUE, GL_DEPTH_FUNC,
    GL_DEPTH_RANGE, GL_DEPTH_SCALE, GL_DEPTH_WRITEMASK, GL_DRAW_BUFFER, GL_DRAW_BUFFER0, GL_DRAW_BUFFER1,
    GL_DRAW_FRAMEBUFFER_BINDING, GL_EDGE_FLAG, GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_FOG_COLOR, GL_FOG_COORD_SRC,
    GL_FOG_DENSITY, GL_FOG_END, GL_FOG_HINT, GL_FOG_INDEX, GL_FOG_MODE, GL_FOG_START, GL_FRAGMENT_SHADER_DERIVATIVE_HINT,
    GL_FRONT_FACE, GL_GENERATE_MIPMAP_HINT, GL_GREEN_BIAS, GL_GREEN_SCALE, GL_INDEX_CLEAR_VALUE, GL_INDEX_OFFSET,
    GL_INDEX_SHIFT, GL_INDEX_WRITEMASK, GL_LIGHT_MODEL_AMBIENT, GL_LIGHT_MODEL_COLOR_CONTROL, GL_LIGHT_MODEL_LOCAL_VIEWER,
    GL_LIGHT_MODEL_TWO_SIDE, GL_LINE_SMOOTH_HINT, GL_LINE_STIPPLE_PATTERN, GL_LINE_STIPPLE_REPEAT, GL_LINE_WIDTH,
    GL_LIST_BASE, GL_LIST_INDEX, GL_LIST_MODE, GL_LOGIC_OP_MODE, GL_MAP_COLOR, GL_MAP_STENCIL, GL_MATRIX_MODE,
    GL_MIN_SAMPLE_SHADING_VALUE, GL_MODELVIEW_MATRIX, GL_MODELVIEW_STACK_DEPTH, GL_NAME_STACK_DEPTH, GL_PACK_ALIGNMENT,
    GL_PACK_IMAGE_HEIGHT, GL_PACK_LSB_FIRST, GL_PACK_ROW_LENGTH, GL_PACK_SKIP_IMAGES, GL_PACK_SKIP_PIXELS,
    GL_PACK_SKIP_ROWS, GL_PACK_SWAP_BYTES, GL_PATCH_VERTICES, GL_PERSPECTIVE_CORRECTION_HINT, GL_PIXEL_PACK_BUFFER_BINDING,
    GL_PIXEL_UNPACK_BUFFER_BINDING, GL_POINT_DISTANCE_ATTENUATION, GL_POINT_FADE_THRESHOLD_SIZE, GL_POINT_SIZE,
    GL_POINT_SIZE_MAX, GL_POINT_SIZE_MIN, GL_POINT_SMOOTH_HINT, GL_POINT_SPRITE_COORD_ORIGIN, GL_POLYGON_MODE,
    GL_POLYGON_OFFSET_FACTOR, GL_POLYGON_OFFSET_UNITS, GL_POLYGON_SMOOTH_HINT, GL_PRIMITIVE_RESTART_INDEX,
    GL_PROGRAM_PIPELINE_BINDING, GL_PROJECTION_MATRIX, GL_PROJECTION_STACK_DEPTH, GL_PROVOKING_VERTEX, GL_READ_BUFFER,
    GL_READ_FRAMEBUFFER_BINDING, GL_RED_BIAS, GL_RED_SCALE, GL_RENDERBUFFER_BINDING, GL_RENDER_MODE,
    GL_SAMPLE_COVERAGE_INVERT, GL_SAMPLE_COVERAGE_VALUE, GL_SCISSOR_BOX, GL_SHADE_MODEL, GL_STENCIL_BACK_FAIL,
    GL_STENCIL_BACK_FUNC, GL_STENCIL_BACK_PASS_DEPTH_FAIL, GL_STENCIL_BACK_PASS_DEPTH_PASS, GL_STENCIL_BACK_REF,
    GL_STENCIL_BACK_VALUE_MASK, GL_STENCIL_BACK_WRITEMASK, GL_STENCIL_CLEAR_VALUE, GL_STENCIL_FAIL, GL_STENCIL_FUNC,
    GL_STENCIL_PASS_DEPTH_FAIL, GL_STENCIL_PASS_DEPTH_PASS, GL_STENCIL_REF, GL_STENCIL_VALUE_MASK, GL_STENCIL_WRITEMASK,
    GL_TEXTURE_COMPRESSION_HINT, GL_TRANSFORM_FEEDBACK_BINDING, GL_TRANSFORM_FEEDBACK_BUFFER_BINDING,
    GL_UNIFORM_BUFFER_BINDING, GL_UNPACK_ALIGNMENT, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_LSB_FIRST, GL_UNPACK_ROW_LENGTH,
    GL_UNPACK_SKIP_IMAGES, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SWAP_BYTES, GL_VERTEX_ARRAY_BINDING,
    GL_VIEWPORT, GL_ZOOM_X, GL_ZOOM_Y, GL_DISPATCH_INDIRECT_BUFFER_BINDING, GL_DRAW_INDIRECT_BUFFER_BINDING,
    GL_SHADER_STORAGE_BUFFER_BINDING, GL_ATOMIC_COUNTER_BUFFER_BINDING, GL_QUERY_BUFFER_BINDING,
    GL_TEXTURE_BUFFER_BINDING};

constexpr GLenum SWITCHES[] = {
    GL_ALPHA_TEST, GL_AUTO_NORMAL, GL_BLEND, GL_COLOR_ARRAY, GL_COLOR_LOGIC_OP, GL_COLOR_MATERIAL, GL_COLOR_SUM,
    GL_CULL_FACE, GL_DEBUG_OUTPUT, GL_DEPTH_BOUNDS_TEST_EXT, GL_DEPTH_CLAMP, GL_DEPTH_TEST, GL_DITHER,
    GL_EDGE_FLAG_ARRAY, GL_FOG, GL_FOG_COORD_ARRAY, GL_FRAGMENT_PROGRAM_ARB, GL_FRAGMENT_SHADER_ATI, GL_FRAMEBUFFER_SRGB,
    GL_INDEX_ARRAY, GL_INDEX_LOGIC_OP, GL_LIGHTING, GL_LINE_SMOOTH, GL_LINE_STIPPLE, GL_MULTISAMPLE, GL_NORMALIZE,
    GL_NORMAL_ARRAY, GL_POINT_SMOOTH, GL_POINT_SPRITE, GL_POLYGON_OFFSET_FILL, GL_POLYGON_OFFSET_LINE,
    GL_POLYGON_OFFSET_POINT, GL_POLYGON_SMOOTH, GL_POLYGON_STIPPLE, GL_PRIMITIVE_RESTART,
    GL_PRIMITIVE_RESTART_FIXED_INDEX, GL_PROGRAM_POINT_SIZE, GL_RASTERIZER_DISCARD, GL_RESCALE_NORMAL,
    GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE, GL_SAMPLE_COVERAGE, GL_SAMPLE_MASK, GL_SAMPLE_SHADING,
    GL_SCISSOR_TEST, GL_SECONDARY_COLOR_ARRAY, GL_STENCIL_TEST, GL_STENCIL_TEST_TWO_SIDE_EXT,
    GL_TEXTURE_CUBE_MAP_SEAMLESS, GL_VERTEX_ARRAY, GL_VERTEX_PROGRAM_ARB, GL_VERTEX_PROGRAM_TWO_SIDE};

constexpr GLenum UNIT_VALUES[] = {
    GL_CURRENT_TEXTURE_COORDS, GL_CURRENT_RASTER_TEXTURE_COORDS, GL_SAMPLER_BINDING, GL_TEXTURE_BINDING_1D,
    GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_3D, GL_TEXTURE_BINDING_CUBE_MAP, GL_TEXTURE_BINDING_RECTANGLE,
    GL_TEXTURE_BINDING_1D_ARRAY, GL_TEXTURE_BINDING_2D_ARRAY, GL_TEXTURE_BINDING_BUFFER, GL_TEXTURE_MATRIX,
    GL_TEXTURE_STACK_DEPTH};

constexpr GLenum UNIT_SWITCHES[] = {
    GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP, GL_TEXTURE_RECTANGLE, GL_TEXTURE_GEN_Q,
    GL_TEXTURE_GEN_R, GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T};

constexpr GLenum ENVIRONMENT[] = {
    GL_TEXTURE_ENV_MODE, GL_TEXTURE_ENV_COLOR, GL_COMBINE_RGB, GL_COMBINE_ALPHA, GL_SRC0_RGB, GL_SRC1_RGB, GL_SRC2_RGB,
    GL_SRC0_ALPHA, GL_SRC1_ALPHA, GL_SRC2_ALPHA, GL_OPERAND0_RGB, GL_OPERAND1_RGB, GL_OPERAND2_RGB, GL_RGB_SCALE,
    GL_ALPHA_SCALE};

constexpr GLenum TEXTURE_PARAMETERS[] = {
    GL_TEXTURE_MAG_FILTER, GL_TEXTURE_MIN_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_BORDER_COLOR,
    GL_TEXTURE_PRIORITY, GL_TEXTURE_BASE_LEVEL, GL_TEXTURE_MAX_LEVEL, GL_TEXTURE_LOD_BIAS, GL_TEXTURE_COMPARE_MODE,
    GL_GENERATE_MIPMAP};

constexpr GLenum LIGHT[] = {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_POSITION, GL_SPOT_DIRECTION, GL_SPOT_EXPONENT,
                            GL_SPOT_CUTOFF, GL_CONSTANT_ATTENUATION, GL_LINEAR_ATTENUATION, GL_QUADRATIC_ATTENUATION};
constexpr GLenum MATERIAL[] = {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_SHININESS};
constexpr GLenum PIXEL_MAPS[] = {GL_PIXEL_MAP_R_TO_R, GL_PIXEL_MAP_G_TO_G, GL_PIXEL_MAP_B_TO_B, GL_PIXEL_MAP_A_TO_A};
// clang-format on

std::string key(const char* group, unsigned int index, GLenum name) {
    std::ostringstream text;
    text << group << ' ' << index << " 0x" << std::hex << name;
    return text.str();
}

template <class Number, class Ask>
std::vector<double> ask(Ask query) {
    Number values[32] = {};
    query(values);
    return std::vector<double>(values, values + 32);
}

void readUnit(GlState& state, unsigned int unit) {
    for (const GLenum name : UNIT_VALUES) {
        state[key("unit", unit, name)] = ask<GLdouble>([&](GLdouble* out) { glGetDoublev(name, out); });
    }
    for (const GLenum name : UNIT_SWITCHES) {
        state[key("unit switch", unit, name)] = {static_cast<double>(glIsEnabled(name))};
    }
    for (const GLenum name : ENVIRONMENT) {
        state[key("environment", unit, name)] =
            ask<GLfloat>([&](GLfloat* out) { glGetTexEnvfv(GL_TEXTURE_ENV, name, out); });
    }
    state[key("bias", unit, 0)] =
        ask<GLfloat>([&](GLfloat* out) { glGetTexEnvfv(GL_TEXTURE_FILTER_CONTROL, GL_TEXTURE_LOD_BIAS, out); });
    for (const GLenum coordinate : {GL_S, GL_T, GL_R, GL_Q}) {
        for (const GLenum name : {GL_TEXTURE_GEN_MODE, GL_OBJECT_PLANE, GL_EYE_PLANE}) {
            state[key("generation", 10 * unit + (coordinate - GL_S), name)] =
                ask<GLdouble>([&](GLdouble* out) { glGetTexGendv(coordinate, name, out); });
        }
    }
    for (const GLenum target : {GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP}) {
        for (const GLenum name : TEXTURE_PARAMETERS) {
            state[key("texture", 100000 * unit + target, name)] =
                ask<GLfloat>([&](GLfloat* out) { glGetTexParameterfv(target, name, out); });
        }
    }
}

void readUnits(GlState& state) {
    GLint active = 0;
    GLint count = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    glGetIntegerv(GL_MAX_TEXTURE_UNITS, &count);
    for (GLint unit = 0; unit < count; ++unit) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        readUnit(state, static_cast<unsigned int>(unit));
    }
    glActiveTexture(static_cast<GLenum>(active));
}

void readLighting(GlState& state) {
    for (unsigned int light = 0; light < 8; ++light) {
        state[key("light on", light, 0)] = {static_cast<double>(glIsEnabled(GL_LIGHT0 + light))};
        for (const GLenum name : LIGHT) {
            state[key("light", light, name)] =
                ask<GLfloat>([&](GLfloat* out) { glGetLightfv(GL_LIGHT0 + light, name, out); });
        }
    }
    for (const GLenum face : {GL_FRONT, GL_BACK}) {
        for (const GLenum name : MATERIAL) {
            state[key("material", face, name)] = ask<GLfloat>([&](GLfloat* out) { glGetMaterialfv(face, name, out); });
        }
    }
}

void readArrays(GlState& state) {
    for (unsigned int plane = 0; plane < 8; ++plane) {
        state[key("clip on", plane, 0)] = {static_cast<double>(glIsEnabled(GL_CLIP_PLANE0 + plane))};
        state[key("clip", plane, 0)] =
            ask<GLdouble>([&](GLdouble* out) { glGetClipPlane(GL_CLIP_PLANE0 + plane, out); });
    }
    for (unsigned int buffer = 0; buffer < 8; ++buffer) {
        state[key("blend on", buffer, 0)] = {static_cast<double>(glIsEnabledi(GL_BLEND, buffer))};
        for (const GLenum name : {GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_EQUATION_RGB, GL_COLOR_WRITEMASK}) {
            state[key("buffer", buffer, name)] = ask<GLint>([&](GLint* out) { glGetIntegeri_v(name, buffer, out); });
        }
    }
    for (unsigned int viewport = 0; viewport < 4; ++viewport) {
        state[key("scissor on", viewport, 0)] = {static_cast<double>(glIsEnabledi(GL_SCISSOR_TEST, viewport))};
        for (const GLenum name : {GL_VIEWPORT, GL_SCISSOR_BOX, GL_DEPTH_RANGE}) {
            state[key("viewport", viewport, name)] =
                ask<GLfloat>([&](GLfloat* out) { glGetFloati_v(name, viewport, out); });
        }
    }
    state["sample mask"] = ask<GLint>([](GLint* out) { glGetIntegeri_v(GL_SAMPLE_MASK_VALUE, 0, out); });
    GLubyte stipple[128] = {};
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glGetPolygonStipple(stipple);
    state["stipple"] = std::vector<double>(stipple, stipple + 128);
    for (const GLenum map : PIXEL_MAPS) {
        GLfloat values[65536] = {};
        glGetPixelMapfv(map, values);
        state[key("pixel map", 0, map)] = std::vector<double>(values, values + 256);
    }
}

}  // namespace

GlState readGlState() {
    GlState state;
    for (const GLenum name : VALUES) {
        state[key("value", 0, name)] = ask<GLdouble>([&](GLdouble* out) { glGetDoublev(name, out); });
    }
    for (const GLenum name : SWITCHES) {
        state[key("switch", 0, name)] = {static_cast<double>(glIsEnabled(name))};
    }
    readUnits(state);
    readLighting(state);
    // What is asked for as an array goes through the pack state, which is put back.
    GLint buffer = 0;
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &buffer);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    readArrays(state);
    glPopClientAttrib();
    glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(buffer));
    while (glGetError() != GL_NO_ERROR) {
    }
    return state;
}

std::string describeDifference(const GlState& before, const GlState& after) {
    std::ostringstream text;
    for (const auto& [name, values] : before) {
        const auto found = after.find(name);
        for (std::size_t i = 0; found != after.end() && i < values.size(); ++i) {
            const double now = found->second[i];
            if (values[i] != now && !(std::isnan(values[i]) && std::isnan(now))) {
                text << name << '[' << i << "]: " << values[i] << " became " << now << '\n';
            }
        }
    }
    return before.size() == after.size() ? text.str() : text.str() + "not the same questions\n";
}
