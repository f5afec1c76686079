#include "HostileState.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <QOpenGLContext>

#include <vector>

namespace {

GLuint boundTexture(GLenum target, GLenum image) {
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(target, name);
    const std::vector<unsigned char> red(4 * 4 * 4 * 4, 77);
    if (image == GL_TEXTURE_3D) {
        glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, 4, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, red.data());
    } else if (image == GL_TEXTURE_CUBE_MAP) {
        for (GLenum face = 0; face < 6; ++face) {
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         red.data());
        }
    } else {
        glTexImage2D(target, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, red.data());
    }
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_MIRRORED_REPEAT);
    glEnable(target);
    return name;
}

void useProgram() {
    const char* source = "void main() { gl_FragColor = vec4(1.0, 0.0, 1.0, 1.0); }";
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    const GLuint program = glCreateProgram();
    glAttachShader(program, shader);
    glLinkProgram(program);
    glUseProgram(program);
}

void usePipeline() {
    const char* source = "void main() { gl_FragColor = vec4(1.0, 0.0, 1.0, 1.0); }";
    const GLuint program = glCreateShaderProgramv(GL_FRAGMENT_SHADER, 1, &source);
    GLuint pipeline = 0;
    glGenProgramPipelines(1, &pipeline);
    glUseProgramStages(pipeline, GL_FRAGMENT_SHADER_BIT, program);
    glBindProgramPipeline(pipeline);
}

void bindSampler() {
    GLuint sampler = 0;
    glGenSamplers(1, &sampler);
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
    glBindSampler(0, sampler);
    glBindSampler(1, sampler);
}

void bindBuffers() {
    GLuint names[4] = {};
    glGenBuffers(4, names);
    const GLenum targets[] = {GL_PIXEL_UNPACK_BUFFER, GL_PIXEL_PACK_BUFFER, GL_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER};
    for (int i = 0; i < 4; ++i) {
        glBindBuffer(targets[i], names[i]);
        glBufferData(targets[i], 64, nullptr, GL_STATIC_DRAW);
    }
}

void spoilStore() {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 977);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 3);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 2);
    glPixelStorei(GL_UNPACK_SWAP_BYTES, 1);
    glPixelStorei(GL_UNPACK_LSB_FIRST, 1);
    glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 5);
    glPixelStorei(GL_UNPACK_SKIP_IMAGES, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 2);
    glPixelStorei(GL_PACK_ROW_LENGTH, 11);
}

void spoilTransfer() {
    glPixelTransferf(GL_RED_SCALE, 0.0f);
    glPixelTransferf(GL_GREEN_BIAS, 0.5f);
    glPixelTransferf(GL_ALPHA_SCALE, 0.25f);
    glPixelTransferi(GL_MAP_COLOR, 1);
    const GLfloat map[] = {0.5f, 0.25f};
    glPixelMapfv(GL_PIXEL_MAP_R_TO_R, 2, map);
}

void spoilMatrices() {
    for (const GLenum mode : {GL_MODELVIEW, GL_PROJECTION, GL_TEXTURE}) {
        glMatrixMode(mode);
        glPushMatrix();
        glScalef(0.3f, 0.2f, 0.1f);
        glTranslatef(0.5f, 0.25f, 3.0f);
    }
}

void useFragmentProgram() {
    const char text[] = "!!ARBfp1.0\nMOV result.color, {1.0, 0.0, 1.0, 1.0};\nEND";
    // Not among the functions that are exported by name.
    using Gen = void (*)(GLsizei, GLuint*);
    using Bind = void (*)(GLenum, GLuint);
    using Set = void (*)(GLenum, GLenum, GLsizei, const void*);
    const QOpenGLContext* context = QOpenGLContext::currentContext();
    const auto gen = reinterpret_cast<Gen>(context->getProcAddress("glGenProgramsARB"));
    const auto bind = reinterpret_cast<Bind>(context->getProcAddress("glBindProgramARB"));
    const auto set = reinterpret_cast<Set>(context->getProcAddress("glProgramStringARB"));
    GLuint name = 0;
    gen(1, &name);
    bind(GL_FRAGMENT_PROGRAM_ARB, name);
    set(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, sizeof(text) - 1, text);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
}

std::vector<HostileState> make() {
    return {
        {"nothing", [] {}},
        {"alpha test",
         [] {
             glEnable(GL_ALPHA_TEST);
             glAlphaFunc(GL_NEVER, 0.5f);
         }},
        {"stencil test",
         [] {
             glEnable(GL_STENCIL_TEST);
             glStencilFunc(GL_NEVER, 1, 3);
             glStencilMask(5);
         }},
        {"depth test",
         [] {
             glEnable(GL_DEPTH_TEST);
             glDepthFunc(GL_NEVER);
             glDepthMask(GL_TRUE);
         }},
        {"lighting",
         [] {
             glEnable(GL_LIGHTING);
             glEnable(GL_LIGHT0);
             glEnable(GL_COLOR_MATERIAL);
         }},
        {"fog",
         [] {
             const GLfloat red[] = {1, 0, 0, 1};
             glEnable(GL_FOG);
             glFogi(GL_FOG_MODE, GL_LINEAR);
             glFogf(GL_FOG_START, -9.0f);
             glFogf(GL_FOG_END, -8.0f);
             glFogfv(GL_FOG_COLOR, red);
         }},
        {"culling",
         [] {
             glEnable(GL_CULL_FACE);
             glCullFace(GL_BACK);
             glFrontFace(GL_CW);
         }},
        {"culling of both",
         [] {
             glEnable(GL_CULL_FACE);
             glCullFace(GL_FRONT_AND_BACK);
         }},
        {"clip planes",
         [] {
             const GLdouble none[] = {0, 0, 0, -1};
             glClipPlane(GL_CLIP_PLANE0, none);
             glClipPlane(GL_CLIP_PLANE5, none);
             glEnable(GL_CLIP_PLANE0);
             glEnable(GL_CLIP_PLANE5);
         }},
        {"logic operation",
         [] {
             glEnable(GL_COLOR_LOGIC_OP);
             glLogicOp(GL_INVERT);
         }},
        {"color mask", [] { glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_FALSE); }},
        {"blending",
         [] {
             glEnable(GL_BLEND);
             glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
             glBlendFunc(GL_ZERO, GL_ZERO);
         }},
        {"blending of buffers",
         [] {
             glEnablei(GL_BLEND, 1);
             glBlendFunci(1, GL_DST_COLOR, GL_ONE);
             glBlendEquationi(2, GL_MAX);
             glColorMaski(1, GL_FALSE, GL_TRUE, GL_TRUE, GL_FALSE);
         }},
        {"3D texture", [] { boundTexture(GL_TEXTURE_3D, GL_TEXTURE_3D); }},
        {"cube texture", [] { boundTexture(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_CUBE_MAP); }},
        {"rectangle texture", [] { glEnable(GL_TEXTURE_RECTANGLE); }},
        {"2D texture of the host",
         [] {
             boundTexture(GL_TEXTURE_2D, GL_TEXTURE_2D);
             glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_ADD);
         }},
        {"texture of unit 2",
         [] {
             glActiveTexture(GL_TEXTURE2);
             boundTexture(GL_TEXTURE_2D, GL_TEXTURE_2D);
             glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_BLEND);
         }},
        {"active unit 5",
         [] {
             glActiveTexture(GL_TEXTURE5);
             glClientActiveTexture(GL_TEXTURE3);
         }},
        {"texture generation",
         [] {
             for (const GLenum at : {GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T})
                 glEnable(at);
         }},
        {"matrices", spoilMatrices},
        {"pixel store", spoilStore},
        {"pixel transfer", spoilTransfer},
        {"buffers", bindBuffers},
        {"program", useProgram},
        {"program pipeline", usePipeline},
        {"fragment program", useFragmentProgram},
        {"sampler", bindSampler},
        {"polygons",
         [] {
             GLubyte empty[128] = {};
             glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
             glPolygonStipple(empty);
             glEnable(GL_POLYGON_STIPPLE);
             glEnable(GL_POLYGON_OFFSET_FILL);
             glPolygonOffset(9, 9);
             glEnable(GL_POLYGON_SMOOTH);
             glLineWidth(5);
         }},
        {"sRGB writes", [] { glEnable(GL_FRAMEBUFFER_SRGB); }},
        {"samples",
         [] {
             glEnable(GL_SAMPLE_COVERAGE);
             glSampleCoverage(0.25f, GL_TRUE);
             glEnable(GL_SAMPLE_MASK);
             glSampleMaski(0, 0);
             glEnable(GL_SAMPLE_ALPHA_TO_COVERAGE);
             glEnable(GL_SAMPLE_SHADING);
         }},
        {"discarded primitives", [] { glEnable(GL_RASTERIZER_DISCARD); }},
        {"secondary color",
         [] {
             glEnable(GL_COLOR_SUM);
             glSecondaryColor3f(1, 0, 1);
             glColor4f(0.5f, 0, 0, 0.25f);
         }},
        {"clip control", [] { glClipControl(GL_UPPER_LEFT, GL_ZERO_TO_ONE); }},
        {"depth clamp and range",
         [] {
             glEnable(GL_DEPTH_CLAMP);
             glDepthRange(0.75, 0.25);
         }},
        {"viewports of their own",
         [] {
             glViewportIndexedf(2, 3, 4, 50, 60);
             glScissorIndexed(3, 1, 2, 3, 4);
             glDepthRangeIndexed(1, 0.25, 0.5);
             glEnablei(GL_SCISSOR_TEST, 2);
         }},
        {"vertex array",
         [] {
             GLuint name = 0;
             glGenVertexArrays(1, &name);
             glBindVertexArray(name);
             glEnableClientState(GL_COLOR_ARRAY);
         }},
        {"a stale error", [] { glEnable(0xFFFFu); }},
    };
}

}  // namespace

const std::vector<HostileState>& hostileStates() {
    static const std::vector<HostileState> states = make();
    return states;
}
