#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_opengl/LyrGlScope_p.h>
#include <lyr_opengl/LyrSurfaceDriver.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

#include <algorithm>
#include <limits>

namespace {

using LyrRendering::SurfaceColors;
using LyrRendering::SurfaceMesh;
using LyrSceneGraph::CameraTransform;

bool fitsTogether(const SurfaceMesh& mesh) {
    const std::size_t vertices = mesh.positions.size() / 3;
    const bool sizes = mesh.positions.size() % 3 == 0 && mesh.triangles.size() % 3 == 0 &&
                       (mesh.normals.empty() || mesh.normals.size() == mesh.positions.size()) &&
                       mesh.triangles.size() <= static_cast<std::size_t>(std::numeric_limits<GLsizei>::max());
    return sizes && std::all_of(mesh.triangles.begin(), mesh.triangles.end(),
                                [&](std::uint32_t vertex) { return vertex < vertices; });
}

bool isTransparent(const SurfaceColors& colors) {
    for (std::size_t i = 3; i < colors.size(); i += 4) {
        if (colors[i] != 255) {
            return true;
        }
    }
    return false;
}

/** Whether the corners of most triangles run clockwise, seen from where their normals point to. Lighting of both sides
 * needs to know, and makers of surfaces differ. */
bool runsClockwise(const SurfaceMesh& mesh) {
    constexpr std::size_t ASKED = 999;
    const std::size_t triangles = mesh.triangles.size() / 3;
    const std::size_t step = triangles / ASKED + 1;
    long long balance = 0;
    for (std::size_t i = 0; i < triangles && !mesh.normals.empty(); i += step) {
        const std::uint32_t* corner = &mesh.triangles[i * 3];
        const auto at = [&](int c, int k) { return mesh.positions[corner[c] * std::size_t(3) + std::size_t(k)]; };
        float volume = 0.0f;
        for (int k = 0; k < 3; ++k) {
            const int l = (k + 1) % 3;
            const int m = (k + 2) % 3;
            const float face =
                (at(1, l) - at(0, l)) * (at(2, m) - at(0, m)) - (at(1, m) - at(0, m)) * (at(2, l) - at(0, l));
            volume += face * mesh.normals[corner[0] * std::size_t(3) + std::size_t(k)];
        }
        balance += volume < 0.0f ? 1 : -1;
    }
    return balance > 0;
}

/** An array in the memory of OpenGL. Where that is short, drawing reads the caller's memory. */
class Buffer {
public:
    explicit Buffer(GLenum target) : mTarget(target) {}

    template <class T>
    void upload(const std::vector<T>& items) {
        release();
        if (items.empty()) {
            return;
        }
        LyrRendering::drainGlErrors();
        glGenBuffers(1, &mName);
        glBindBuffer(mTarget, mName);
        glBufferData(mTarget, static_cast<GLsizeiptr>(items.size() * sizeof(T)), items.data(), GL_STATIC_DRAW);
        if (glGetError() != GL_NO_ERROR) {
            release();
        }
        glBindBuffer(mTarget, 0);
    }

    void release() {
        if (mName != 0) {
            glDeleteBuffers(1, &mName);
            mName = 0;
        }
    }

    /** Binds, and gives what the pointer calls of OpenGL take. */
    template <class T>
    const void* bind(const std::vector<T>& items) const {
        glBindBuffer(mTarget, mName);
        return mName != 0 ? nullptr : items.data();
    }

private:
    GLenum mTarget;
    GLuint mName = 0;
};

void lightFromTheEye() {
    const GLfloat towardsEye[] = {0.25f, 0.35f, 1.0f, 0.0f};
    const GLfloat ambient[] = {0.25f, 0.25f, 0.25f, 1.0f};
    const GLfloat diffuse[] = {0.8f, 0.8f, 0.8f, 1.0f};
    const GLfloat none[] = {0.0f, 0.0f, 0.0f, 1.0f};
    glPushMatrix();
    glLoadIdentity();
    glLightfv(GL_LIGHT0, GL_POSITION, towardsEye);
    glPopMatrix();
    glLightfv(GL_LIGHT0, GL_AMBIENT, none);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT0, GL_SPECULAR, none);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, none);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, none);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHTING);
}

}  // namespace

namespace LyrRendering {

/** What is shown of the layer, and its arrays. */
class SurfaceDriver::Buffers {
public:
    const SurfaceMesh* mesh() const { return mSurface.mesh.get(); }

    /** Takes over another surface. False if its mesh does not fit together: nothing is shown then. */
    bool take(const Surface& surface) {
        const bool newMesh = surface.mesh != mGiven.mesh;
        const bool newColors = newMesh || surface.colors != mGiven.colors;
        mGiven = surface;
        mChanged = newMesh || newColors;
        if (newMesh) {
            const bool sound = !surface.mesh || fitsTogether(*surface.mesh);
            mSurface.mesh = sound ? surface.mesh : nullptr;
            mClockwise = mSurface.mesh && runsClockwise(*mSurface.mesh);
            mMeshUploaded = false;
        }
        if (newColors) {
            const bool fit =
                surface.colors && mSurface.mesh && surface.colors->size() / 4 >= mSurface.mesh->positions.size() / 3;
            mSurface.colors = fit ? surface.colors : nullptr;
            mTransparent = fit && isTransparent(*surface.colors);
            mColorsUploaded = false;
        }
        return !newMesh || !surface.mesh || mSurface.mesh;
    }
    bool hasChanged() const { return mChanged; }

    void release() {
        for (Buffer* buffer : {&mPositions, &mNormals, &mTriangles, &mColors}) {
            buffer->release();
        }
        mMeshUploaded = mColorsUploaded = false;
    }

    bool draw() {
        const GlScope scope;
        if (!scope.isOpen()) {
            return false;
        }
        upload();
        const SurfaceMesh& mesh = *mSurface.mesh;
        glEnable(GL_DEPTH_TEST);
        (mTransparent ? glEnable : glDisable)(GL_BLEND);
        glEnableClientState(GL_VERTEX_ARRAY);
        glVertexPointer(3, GL_FLOAT, 0, mPositions.bind(mesh.positions));
        if (!mesh.normals.empty()) {
            glEnableClientState(GL_NORMAL_ARRAY);
            glNormalPointer(GL_FLOAT, 0, mNormals.bind(mesh.normals));
            lightFromTheEye();
            glFrontFace(mClockwise ? GL_CW : GL_CCW);
        }
        glColor4f(0.75f, 0.75f, 0.75f, 1.0f);
        if (mSurface.colors) {
            glEnableClientState(GL_COLOR_ARRAY);
            glColorPointer(4, GL_UNSIGNED_BYTE, 0, mColors.bind(*mSurface.colors));
        }
        const void* triangles = mTriangles.bind(mesh.triangles);
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(mesh.triangles.size()), GL_UNSIGNED_INT, triangles);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        return true;
    }

private:
    void upload() {
        if (!mMeshUploaded) {
            mPositions.upload(mSurface.mesh->positions);
            mNormals.upload(mSurface.mesh->normals);
            mTriangles.upload(mSurface.mesh->triangles);
            mMeshUploaded = true;
        }
        if (!mColorsUploaded) {
            mColors.release();
            if (mSurface.colors) {
                mColors.upload(*mSurface.colors);
            }
            mColorsUploaded = true;
        }
    }

    Surface mGiven;    ///< as it was handed over
    Surface mSurface;  ///< what of it is drawn
    bool mChanged = false;
    bool mTransparent = false;
    bool mClockwise = false;
    bool mMeshUploaded = false;
    bool mColorsUploaded = false;
    Buffer mPositions{GL_ARRAY_BUFFER};
    Buffer mNormals{GL_ARRAY_BUFFER};
    Buffer mColors{GL_ARRAY_BUFFER};
    Buffer mTriangles{GL_ELEMENT_ARRAY_BUFFER};
};

SurfaceDriver::SurfaceDriver(LyrSceneGraph::ViewportObjectNode* node)
    : mNode(node), mBuffers(std::make_unique<Buffers>()) {}

SurfaceDriver::~SurfaceDriver() = default;

bool SurfaceDriver::init() {
    if (mNode->getCameraTransform().getKind() != CameraTransform::Kind::Scene) {
        return false;
    }
    if (mNode->getCameraNode()->isSuppressed()) {
        return true;
    }
    Surface surface;
    if (!fetchSurface(surface)) {
        surface = {};
    }
    if (!mBuffers->take(surface)) {
        LyrError::emitError(LyrError::Message(mNode->getObject(), Lyr::InvalidParameters));
    }
    if (mBuffers->hasChanged()) {
        mNode->addUpdateFlags(LyrSceneGraph::ViewportObjectNode::SCENE_CHANGED);
    }
    return true;
}

void SurfaceDriver::cleanup() {
    mBuffers->release();
}

DeviceRect SurfaceDriver::getDeviceCoverageRect(long long pass) {
    return pass == SCENE_PASS && mBuffers->mesh() ? deviceSquare() : emptyRect();
}

DeviceRect SurfaceDriver::getDeviceUpdateRect(long long pass) {
    const bool changed = mNode->getUpdateFlags() != 0;
    return pass == SCENE_PASS && changed ? deviceSquare() : emptyRect();
}

bool SurfaceDriver::renderObject(long long pass, void*) {
    const bool drawn = pass == SCENE_PASS && mBuffers->mesh() && !mBuffers->mesh()->triangles.empty();
    return !drawn || mBuffers->draw();
}

}  // namespace LyrRendering
