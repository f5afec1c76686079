#pragma once

#include <lyr_core/LyrVector2.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_opengl/LyrOpenglExport.h>

#include <array>
#include <cstddef>

namespace LyrSceneGraph {

/** How a camera maps its scene onto its viewport. Widget pixels are pixels of the framebuffer, from the top left corner
 * of the view to the right and down; positions are continuous, so that the first pixel reaches from 0 to 1. The world
 * is in millimetres.
 *
 *  A slice view looks across one axis, without perspective: x to the right and y down across z, x and z across y, y and
 * z across x. A scene view looks at the scene from outside, in perspective, along a direction that can be turned. */
class LYR_OPENGL_EXPORT CameraTransform {
public:
    enum class Kind {
        Flat,   ///< shows no world
        Slice,  ///< one slice
        Scene   ///< the scene from outside
    };
    /** A matrix of OpenGL: columns one after the other. */
    using Matrix = std::array<float, 16>;

    CameraTransform() noexcept;

    /** The outer edges of the viewport's pixels: max = min + size. */
    LyrVector2<float> getViewportMin() const noexcept { return mMin; }
    LyrVector2<float> getViewportMax() const noexcept { return mMax; }
    LyrVector2<float> getViewportSize() const noexcept { return mMax - mMin; }
    void setViewport(const LyrVector2<float>& min, const LyrVector2<float>& size) noexcept;

    Kind getKind() const noexcept { return mKind; }
    /** Makes this the camera of a slice view across an axis (0, 1, 2), fitted to the box. */
    void setSliceView(int axis) noexcept;
    /** Makes this the camera of a scene view, fitted to the box and looking from the first direction. */
    void setSceneView() noexcept;

    /** The box that holds the scene. A camera that nobody moved stays fitted to it. A box without extent, or that is
     * not finite, counts as the unit cube at the origin. */
    void setBox(const LyrVector3<float>& min, const LyrVector3<float>& max) noexcept;
    /** Which slice a slice view shows, and where on its axis it lies. */
    void setSlice(int index, float position) noexcept;
    int getAxis() const noexcept { return mAxis; }
    int getSliceIndex() const noexcept { return mSliceIndex; }
    float getSlicePosition() const noexcept { return static_cast<float>(mCenter[static_cast<std::size_t>(mAxis)]); }

    /** Shows the whole box, from the first direction. */
    void fit() noexcept;
    bool isFitted() const noexcept { return mFitted; }
    /** Magnifies. The place under `at`, in widget pixels, stays in slice views; scene views keep their centre. */
    void zoom(double factor, const LyrVector2<float>& at) noexcept;
    /** Moves what is shown by widget pixels. */
    void pan(const LyrVector2<float>& pixels) noexcept;
    /** Turns a scene view as if its front were dragged by widget pixels; the shorter side is half a turn. */
    void rotate(const LyrVector2<float>& pixels) noexcept;

    /** In scene views that of the plane through the centre. */
    double getPixelsPerMillimeter() const noexcept { return mScale; }

    /** x and y in widget pixels, z the depth in device coordinates (-1 near, 1 far). */
    LyrVector3<float> worldToWidget(const LyrVector3<float>& world) const noexcept;
    /** The place of the world at a widget position: in slice views on the slice, in scene views on the plane through
     * the centre that faces the eye. */
    LyrVector3<float> widgetToWorld(const LyrVector2<float>& widget) const noexcept;
    /** The same at a depth in device coordinates. */
    LyrVector3<float> widgetToWorld(const LyrVector2<float>& widget, float depth) const noexcept;
    LyrVector2<float> widgetToDevice(const LyrVector2<float>& widget) const noexcept;

    Matrix getModelView() const noexcept;
    Matrix getProjection() const noexcept;

    /** The axis that runs to the right, and the one that runs down, in slices across an axis. */
    static int rightAxis(int axis) noexcept { return axis == 0 ? 1 : 0; }
    static int downAxis(int axis) noexcept { return axis == 2 ? 1 : 2; }

private:
    using Vector = std::array<double, 3>;
    struct Depths {
        double eye, near, far;
    };

    void fitNow() noexcept;
    double fittedScale() const noexcept;
    double width() const noexcept;
    double height() const noexcept;
    Vector toEye(const Vector& world) const noexcept;
    Depths depths() const noexcept;
    double sliceDepthScale() const noexcept;

    LyrVector2<float> mMin;
    LyrVector2<float> mMax;
    Kind mKind = Kind::Flat;
    int mAxis = 2;
    int mSliceIndex = 0;
    bool mFitted = true;
    Vector mBoxMin;
    Vector mBoxMax;
    Vector mCenter{};  ///< what lies in the middle of the viewport
    double mScale = 1.0;
    std::array<Vector, 3> mTurn;  ///< to the right, up and towards the eye, as directions of the world
};

}  // namespace LyrSceneGraph
