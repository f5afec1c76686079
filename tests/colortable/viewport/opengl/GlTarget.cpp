// Before the toolkit includes the same headers.
#define GL_GLEXT_PROTOTYPES

#include "GlTarget.h"

#include <GL/gl.h>
#include <GL/glext.h>

namespace {

QSurfaceFormat fixedFunctions() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    return format;
}

std::unique_ptr<QOpenGLContext> makeContext(QOpenGLContext* shared) {
    auto context = std::make_unique<QOpenGLContext>();
    context->setFormat(fixedFunctions());
    context->setShareContext(shared);
    context->create();
    return context;
}

}  // namespace

GlTarget::GlTarget(int width, int height) : mWidth(width), mHeight(height) {
    mSurface.setFormat(fixedFunctions());
    mSurface.create();
    mDrawing = makeContext(nullptr);
    mReading = makeContext(mDrawing.get());
    if (!mDrawing->isValid() || !mReading->isValid() || !mDrawing->makeCurrent(&mSurface)) {
        return;
    }
    glGenTextures(1, &mTexture);
    glBindTexture(GL_TEXTURE_2D, mTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glBindTexture(GL_TEXTURE_2D, 0);
    glGenRenderbuffers(1, &mDepth);
    glBindRenderbuffer(GL_RENDERBUFFER, mDepth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, width, height);
    glGenFramebuffers(1, &mFramebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, mFramebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, mTexture, 0);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, mDepth);
    mValid = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    glViewport(0, 0, width, height);
}

GlTarget::~GlTarget() {
    mReading.reset();
    mDrawing.reset();
}

void GlTarget::clear(const Color& color) const {
    glClearColor(static_cast<float>(color.red) / 255.0f, static_cast<float>(color.green) / 255.0f,
                 static_cast<float>(color.blue) / 255.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

void GlTarget::read() {
    glFinish();
    mReading->makeCurrent(&mSurface);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight) * 4);
    glBindTexture(GL_TEXTURE_2D, mTexture);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    mDrawing->makeCurrent(&mSurface);
    mPixels.clear();
    for (int y = mHeight - 1; y >= 0; --y) {
        for (int x = 0; x < mWidth; ++x) {
            const unsigned char* at = &bytes[static_cast<std::size_t>(y * mWidth + x) * 4];
            mPixels.push_back({at[0], at[1], at[2]});
        }
    }
}
