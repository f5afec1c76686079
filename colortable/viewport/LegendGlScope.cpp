#include <colortable/viewport/LegendGlScope_p.h>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string_view>

namespace {

/** All attribute groups that glPushAttrib() has had from the start. */
constexpr GLbitfield ATTRIBUTES = 0x000FFFFF;

GLint integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

GLuint binding(GLenum name) {
    return static_cast<GLuint>(integer(name));
}

/** 10 * major + minor; 0 without a context. */
int contextVersion() {
    const auto* text = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    const bool readable = text && std::strlen(text) >= 3 && text[1] == '.';
    return readable ? 10 * (text[0] - '0') + (text[2] - '0') : 0;
}

/** Whether the context knows an extension by its whole name. */
bool hasExtension(std::string_view name) {
    const auto* text = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    std::string_view all = text ? text : "";
    while (!all.empty()) {
        const std::size_t end = std::min(all.find(' '), all.size());
        if (all.substr(0, end) == name) {
            return true;
        }
        all.remove_prefix(std::min(end + 1, all.size()));
    }
    return false;
}

bool isFull(GLenum depth, GLenum limit) {
    return integer(depth) >= integer(limit);
}

/** What can change or suppress the fragments of a rectangle, by the version of OpenGL that brought it. */
void resetFragments(int version) {
    for (const GLenum capability : std::initializer_list<GLenum>{
             GL_DEPTH_TEST, GL_LIGHTING, GL_ALPHA_TEST, GL_STENCIL_TEST, GL_FOG, GL_CULL_FACE, GL_COLOR_LOGIC_OP,
             GL_INDEX_LOGIC_OP, GL_POLYGON_OFFSET_FILL, GL_POLYGON_STIPPLE, GL_POLYGON_SMOOTH,
             GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_ALPHA_TO_ONE, GL_SAMPLE_COVERAGE}) {
        glDisable(capability);
    }
    if (version >= 30) {
        glDisable(GL_FRAMEBUFFER_SRGB);
    }
    if (version >= 32) {
        glDisable(GL_DEPTH_CLAMP);
    }
    for (GLint plane = integer(GL_MAX_CLIP_PLANES); plane-- > 0;) {
        glDisable(GL_CLIP_PLANE0 + static_cast<GLenum>(plane));
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDepthMask(GL_FALSE);
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glLineWidth(1.0f);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
}

/** Switches of extensions that replace parts of the fixed functions; the enable group saves them. */
void resetExtensions() {
    static constexpr struct {
        const char* extension;
        GLenum capability;
    } SWITCHES[] = {{"GL_ARB_vertex_program", GL_VERTEX_PROGRAM_ARB},
                    {"GL_ARB_fragment_program", GL_FRAGMENT_PROGRAM_ARB},
                    {"GL_ATI_fragment_shader", GL_FRAGMENT_SHADER_ATI},
                    {"GL_EXT_stencil_two_side", GL_STENCIL_TEST_TWO_SIDE_EXT},
                    {"GL_EXT_depth_bounds_test", GL_DEPTH_BOUNDS_TEST_EXT}};
    for (const auto& entry : SWITCHES) {
        if (hasExtension(entry.extension)) {
            glDisable(entry.capability);
        }
    }
}

/** Leaves the 2D texture of unit 0 as the only one, and makes unit 0 the active one. */
void resetTextures(bool rectangles) {
    for (GLint unit = integer(GL_MAX_TEXTURE_UNITS); unit-- > 0;) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        for (const GLenum target :
             std::initializer_list<GLenum>{GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP}) {
            glDisable(target);
        }
        if (rectangles) {
            glDisable(GL_TEXTURE_RECTANGLE);
        }
    }
    for (const GLenum generation :
         std::initializer_list<GLenum>{GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R, GL_TEXTURE_GEN_Q}) {
        glDisable(generation);
    }
    glEnable(GL_TEXTURE_2D);
}

/** Bytes go to a texture as they are: rows without gaps, colours without scale, bias and maps. */
void resetUpload() {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (const GLenum store : std::initializer_list<GLenum>{
             GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST, GL_UNPACK_ROW_LENGTH, GL_UNPACK_IMAGE_HEIGHT,
             GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_IMAGES}) {
        glPixelStorei(store, 0);
    }
    for (const GLenum scale :
         std::initializer_list<GLenum>{GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE}) {
        glPixelTransferf(scale, 1.0f);
    }
    for (const GLenum bias : std::initializer_list<GLenum>{GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS}) {
        glPixelTransferf(bias, 0.0f);
    }
    glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
}

}  // namespace

LegendGlScope::LegendGlScope() : mVersion(contextVersion()) {
    if (mVersion < 20 || !haveRoom()) {
        return;
    }
    mReady = true;
    mActiveTexture = binding(GL_ACTIVE_TEXTURE);
    glActiveTexture(GL_TEXTURE0);
    saveLoose();
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPushAttrib(ATTRIBUTES);
    resetFragments(mVersion);
    resetExtensions();
    resetTextures(mVersion >= 31 || hasExtension("GL_ARB_texture_rectangle"));
    resetUpload();
    pushMatrices();
}

LegendGlScope::~LegendGlScope() {
    if (!mReady) {
        return;
    }
    popMatrices();
    glPopAttrib();
    glPopClientAttrib();
    glActiveTexture(GL_TEXTURE0);
    restoreLoose();
    glActiveTexture(mActiveTexture);
}

/** The depth of the texture stack is that of the active unit, which is put back. */
bool LegendGlScope::haveRoom() {
    if (isFull(GL_ATTRIB_STACK_DEPTH, GL_MAX_ATTRIB_STACK_DEPTH) ||
        isFull(GL_CLIENT_ATTRIB_STACK_DEPTH, GL_MAX_CLIENT_ATTRIB_STACK_DEPTH) ||
        isFull(GL_MODELVIEW_STACK_DEPTH, GL_MAX_MODELVIEW_STACK_DEPTH) ||
        isFull(GL_PROJECTION_STACK_DEPTH, GL_MAX_PROJECTION_STACK_DEPTH)) {
        return false;
    }
    const GLuint active = binding(GL_ACTIVE_TEXTURE);
    glActiveTexture(GL_TEXTURE0);
    const bool full = isFull(GL_TEXTURE_STACK_DEPTH, GL_MAX_TEXTURE_STACK_DEPTH);
    glActiveTexture(active);
    // A program that only its use keeps alive would be gone when it is put out of use.
    const GLuint program = binding(GL_CURRENT_PROGRAM);
    GLint deleted = GL_FALSE;
    if (program != 0) {
        glGetProgramiv(program, GL_DELETE_STATUS, &deleted);
    }
    return !full && deleted == GL_FALSE;
}

/** What no attribute group holds. Unit 0 is active. */
void LegendGlScope::saveLoose() {
    mProgram = binding(GL_CURRENT_PROGRAM);
    glUseProgram(0);
    if (mVersion >= 21) {
        mUnpackBuffer = binding(GL_PIXEL_UNPACK_BUFFER_BINDING);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    }
    if (mVersion >= 33) {
        mSampler = binding(GL_SAMPLER_BINDING);
        glBindSampler(0, 0);
    }
    if (mVersion >= 41) {
        mPipeline = binding(GL_PROGRAM_PIPELINE_BINDING);
        glBindProgramPipeline(0);
    }
    if (mVersion >= 45) {
        mClipOrigin = binding(GL_CLIP_ORIGIN);
        mClipDepth = binding(GL_CLIP_DEPTH_MODE);
        glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
    }
    saveSwitches();
    saveBlending();
}

void LegendGlScope::saveSwitches() {
    static constexpr struct {
        int version;
        GLenum capability;
    } SWITCHES[] = {{20, GL_COLOR_SUM}, {30, GL_RASTERIZER_DISCARD}, {32, GL_SAMPLE_MASK}, {40, GL_SAMPLE_SHADING}};
    for (std::size_t i = 0; i < mSwitches.size(); ++i) {
        if (mVersion >= SWITCHES[i].version) {
            mSwitches[i] = {SWITCHES[i].capability, glIsEnabled(SWITCHES[i].capability) == GL_TRUE};
            glDisable(SWITCHES[i].capability);
        }
    }
}

/** Popping the attributes gives all draw buffers the blending of the first one on some drivers. */
void LegendGlScope::saveBlending() {
    if (mVersion < 40) {
        return;
    }
    const auto count = static_cast<GLuint>(std::clamp(integer(GL_MAX_DRAW_BUFFERS), 0, 8));
    bool alike = true;
    for (GLuint i = 0; i < count; ++i) {
        Blending& blending = mBlending[i];
        glGetIntegeri_v(GL_BLEND_SRC_RGB, i, &blending.sourceColor);
        glGetIntegeri_v(GL_BLEND_DST_RGB, i, &blending.targetColor);
        glGetIntegeri_v(GL_BLEND_SRC_ALPHA, i, &blending.sourceAlpha);
        glGetIntegeri_v(GL_BLEND_DST_ALPHA, i, &blending.targetAlpha);
        glGetIntegeri_v(GL_BLEND_EQUATION_RGB, i, &blending.colorEquation);
        glGetIntegeri_v(GL_BLEND_EQUATION_ALPHA, i, &blending.alphaEquation);
        alike = alike && blending == mBlending[0];
    }
    mBlendingCount = alike ? 0 : count;
}

void LegendGlScope::restoreBlending() const {
    for (GLuint i = 0; i < mBlendingCount; ++i) {
        const Blending& blending = mBlending[i];
        glBlendFuncSeparatei(i, static_cast<GLenum>(blending.sourceColor), static_cast<GLenum>(blending.targetColor),
                             static_cast<GLenum>(blending.sourceAlpha), static_cast<GLenum>(blending.targetAlpha));
        glBlendEquationSeparatei(i, static_cast<GLenum>(blending.colorEquation),
                                 static_cast<GLenum>(blending.alphaEquation));
    }
}

void LegendGlScope::restoreLoose() {
    restoreBlending();
    for (const LooseSwitch& entry : mSwitches) {
        if (entry.on) {
            glEnable(entry.capability);
        }
    }
    if (mVersion >= 45) {
        glClipControl(mClipOrigin, mClipDepth);
    }
    if (mVersion >= 41) {
        glBindProgramPipeline(mPipeline);
    }
    if (mVersion >= 33) {
        glBindSampler(0, mSampler);
    }
    if (mVersion >= 21) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, mUnpackBuffer);
    }
    glUseProgram(mProgram);
}

void LegendGlScope::pushMatrices() {
    for (const GLenum mode : std::initializer_list<GLenum>{GL_TEXTURE, GL_MODELVIEW, GL_PROJECTION}) {
        glMatrixMode(mode);
        glPushMatrix();
        glLoadIdentity();
    }
    glOrtho(-1.0, 1.0, -1.0, 1.0, -1.0, 1.0);
    mMatricesPushed = true;
}

void LegendGlScope::popMatrices() {
    if (!mMatricesPushed) {
        return;
    }
    mMatricesPushed = false;
    glActiveTexture(GL_TEXTURE0);
    for (const GLenum mode : std::initializer_list<GLenum>{GL_PROJECTION, GL_MODELVIEW, GL_TEXTURE}) {
        glMatrixMode(mode);
        glPopMatrix();
    }
}
