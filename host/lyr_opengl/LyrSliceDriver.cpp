#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_opengl/LyrGlScope_p.h>
#include <lyr_opengl/LyrSliceDriver.h>
#include <lyr_opengl/LyrTextureGL.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using LyrSceneGraph::CameraTransform;

/** A stretch of pixels: `begin` to `end` are drawn, the texture holds one more on either side where there is one, so
 * that blending does not stop at the border of a tile. */
struct Stretch {
    int begin, end, textureBegin, textureEnd;
};

std::vector<Stretch> divide(int length, int limit) {
    const int step = length <= limit ? length : limit - 2;
    std::vector<Stretch> stretches;
    for (int begin = 0; begin < length; begin += step) {
        const int end = std::min(begin + step, length);
        stretches.push_back({begin, end, std::max(begin - 1, 0), std::min(end + 1, length)});
    }
    return stretches;
}

struct Tile {
    Stretch x, y;
    std::unique_ptr<LyrTextureGL> texture;
};

bool isDrawable(const LyrRendering::SliceImage& image) {
    const bool placed = std::isfinite(image.min.x) && std::isfinite(image.min.y) && std::isfinite(image.max.x) &&
                        std::isfinite(image.max.y);
    return placed && image.width > 0 && image.height > 0 &&
           image.pixels.size() / 4 / static_cast<std::size_t>(image.width) >= static_cast<std::size_t>(image.height);
}

/** The place on the slice of a share (0 … 1) of the picture's width and height, in device coordinates. */
LyrVector2<float> toDevice(const CameraTransform& camera, const LyrRendering::SliceImage& image, double x, double y) {
    LyrVector3<float> world;
    const double right = double(image.min.x) + (double(image.max.x) - double(image.min.x)) * x;
    const double down = double(image.min.y) + (double(image.max.y) - double(image.min.y)) * y;
    world[CameraTransform::rightAxis(camera.getAxis())] = static_cast<float>(right);
    world[CameraTransform::downAxis(camera.getAxis())] = static_cast<float>(down);
    world[camera.getAxis()] = camera.getSlicePosition();
    const LyrVector3<float> widget = camera.worldToWidget(world);
    return camera.widgetToDevice({widget.x, widget.y});
}

}  // namespace

namespace LyrRendering {

/** What is shown of the layer, and its textures. */
class SliceDriver::Picture {
public:
    bool isShowing(int axis, int index) const { return mFetched && axis == mAxis && index == mIndex; }
    bool isShown() const { return mShown; }
    LyrTimestamp getTime() const { return mTime; }
    const SliceImage& image() const { return mImage; }

    /** Asks for a picture. */
    template <class Fetch>
    bool renew(int axis, int index, Fetch fetch) {
        mTime = LyrTimestamp::getCurrentTimestamp();
        mFetched = true;
        mAxis = axis;
        mIndex = index;
        const bool given = fetch(mImage);
        mShown = given && isDrawable(mImage);
        mUploaded = false;
        return mShown || !given;
    }

    void dropTextures() {
        mTiles.clear();
        mTextureWidth = mTextureHeight = 0;
        mUploaded = false;
    }

    bool draw(const CameraTransform& camera) {
        GlScope scope;
        if (!scope.isOpen() || !upload()) {
            return false;
        }
        scope.useDeviceCoordinates();
        glDisable(GL_DEPTH_TEST);
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        for (const Tile& tile : mTiles) {
            drawTile(tile, camera);
        }
        return true;
    }

private:
    bool upload() {
        if (mUploaded) {
            return true;
        }
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, mImage.width);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
        glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
        if (!makeTiles()) {
            dropTextures();
            return false;
        }
        for (const Tile& tile : mTiles) {
            const std::size_t first =
                (static_cast<std::size_t>(tile.y.textureBegin) * static_cast<std::size_t>(mImage.width) +
                 static_cast<std::size_t>(tile.x.textureBegin)) *
                4;
            tile.texture->bind();
            tile.texture->setFilter(mImage.smooth ? GL_LINEAR : GL_NEAREST, GL_LINEAR);
            tile.texture->setEnvironment(GL_REPLACE);
            tile.texture->upload(0, 0, tile.texture->getWidth(), tile.texture->getHeight(), GL_RGBA, GL_UNSIGNED_BYTE,
                                 mImage.pixels.data() + first);
            tile.texture->finish();
            tile.texture->unbind();
        }
        mUploaded = true;
        return true;
    }

    bool makeTiles() {
        if (mTextureWidth == mImage.width && mTextureHeight == mImage.height) {
            return true;
        }
        mTiles.clear();
        GLint limit = 0;
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
        if (limit < 4) {
            return false;
        }
        for (const Stretch& y : divide(mImage.height, limit)) {
            for (const Stretch& x : divide(mImage.width, limit)) {
                mTiles.push_back({x, y, std::make_unique<LyrTextureGL>()});
                if (!mTiles.back().texture->create(GL_TEXTURE_2D, GL_RGBA8, x.textureEnd - x.textureBegin,
                                                   y.textureEnd - y.textureBegin, 1, GL_TEXTURE0, 0)) {
                    return false;
                }
            }
        }
        mTextureWidth = mImage.width;
        mTextureHeight = mImage.height;
        return true;
    }

    void drawTile(const Tile& tile, const CameraTransform& camera) const {
        const auto share = [](int place, int length) { return double(place) / double(length); };
        const auto inTexture = [](int place, int begin, int end) {
            return static_cast<float>(double(place - begin) / double(end - begin));
        };
        tile.texture->bind();
        glBegin(GL_QUADS);
        const bool corners[4][2] = {{false, true}, {true, true}, {true, false}, {false, false}};
        for (const auto& corner : corners) {
            const int x = corner[0] ? tile.x.end : tile.x.begin;
            const int y = corner[1] ? tile.y.end : tile.y.begin;
            const LyrVector2<float> at = toDevice(camera, mImage, share(x, mImage.width), share(y, mImage.height));
            glTexCoord2f(inTexture(x, tile.x.textureBegin, tile.x.textureEnd),
                         inTexture(y, tile.y.textureBegin, tile.y.textureEnd));
            glVertex2f(at.x, at.y);
        }
        glEnd();
        tile.texture->unbind();
    }

    SliceImage mImage;
    LyrTimestamp mTime;
    int mAxis = -1;
    int mIndex = -1;
    bool mFetched = false;
    bool mShown = false;
    bool mUploaded = false;
    std::vector<Tile> mTiles;
    int mTextureWidth = 0;
    int mTextureHeight = 0;
};

SliceDriver::SliceDriver(LyrSceneGraph::ViewportObjectNode* node)
    : mNode(node), mPicture(std::make_unique<Picture>()) {}

SliceDriver::~SliceDriver() = default;

bool SliceDriver::init() {
    const CameraTransform& camera = mNode->getCameraTransform();
    if (camera.getKind() != CameraTransform::Kind::Slice) {
        return false;
    }
    if (mNode->getCameraNode()->isSuppressed() ||
        (mPicture->isShowing(camera.getAxis(), camera.getSliceIndex()) && getSliceTimestamp() <= mPicture->getTime())) {
        return true;
    }
    const bool sound = mPicture->renew(camera.getAxis(), camera.getSliceIndex(), [&](SliceImage& image) {
        return fetchSlice(camera.getAxis(), camera.getSliceIndex(), image);
    });
    if (!sound) {
        LyrError::emitError(LyrError::Message(mNode->getObject(), Lyr::InvalidParameters));
    }
    mNode->addUpdateFlags(LyrSceneGraph::ViewportObjectNode::SCENE_CHANGED);
    return true;
}

void SliceDriver::cleanup() {
    mPicture->dropTextures();
}

DeviceRect SliceDriver::getDeviceCoverageRect(long long pass) {
    if (pass != SCENE_PASS || !mPicture->isShown()) {
        return emptyRect();
    }
    const CameraTransform& camera = mNode->getCameraTransform();
    const LyrVector2<float> topLeft = toDevice(camera, mPicture->image(), 0.0, 0.0);
    const LyrVector2<float> bottomRight = toDevice(camera, mPicture->image(), 1.0, 1.0);
    return intersect({{topLeft.x, bottomRight.y}, {bottomRight.x, topLeft.y}}, deviceSquare());
}

DeviceRect SliceDriver::getDeviceUpdateRect(long long pass) {
    const bool changed = mNode->getUpdateFlags() != 0;
    return pass == SCENE_PASS && changed ? deviceSquare() : emptyRect();
}

bool SliceDriver::renderObject(long long pass, void*) {
    return pass != SCENE_PASS || !mPicture->isShown() || mPicture->draw(mNode->getCameraTransform());
}

}  // namespace LyrRendering
