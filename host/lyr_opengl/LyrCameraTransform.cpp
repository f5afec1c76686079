#include <lyr_opengl/LyrCameraTransform.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Vector = std::array<double, 3>;

/** Half the angle that a scene view shows from top to bottom. */
constexpr double HALF_FIELD = 15.0 * std::numbers::pi / 180.0;
/** The part of the viewport that a fitted scene fills. */
constexpr double FILLED = 0.95;
/** How far one may zoom out and in, against the fitted scale. */
constexpr double SMALLEST_ZOOM = 0.02;
constexpr double LARGEST_ZOOM = 500.0;

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

Vector scaled(const Vector& v, double factor) {
    return {v[0] * factor, v[1] * factor, v[2] * factor};
}

Vector sum(const Vector& a, const Vector& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vector unit(const Vector& v) {
    return scaled(v, 1.0 / std::sqrt(dot(v, v)));
}

Vector toVector(const LyrVector3<float>& v) {
    return {double(v.x), double(v.y), double(v.z)};
}

LyrVector3<float> toFloats(const Vector& v) {
    return {static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2])};
}

double diagonal(const Vector& min, const Vector& max) {
    const Vector d = sum(max, scaled(min, -1.0));
    return std::sqrt(dot(d, d));
}

/** Turns two of three directions into each other. */
void turn(Vector& a, Vector& b, double angle) {
    const Vector before = a;
    a = sum(scaled(a, std::cos(angle)), scaled(b, std::sin(angle)));
    b = sum(scaled(b, std::cos(angle)), scaled(before, -std::sin(angle)));
}

/** z downwards, as in the slices across x and y; from the front, a little to the left and from above. */
std::array<Vector, 3> firstDirection() {
    std::array<Vector, 3> directions{Vector{1, 0, 0}, Vector{0, 0, -1}, Vector{0, 1, 0}};
    turn(directions[0], directions[2], 30.0 * std::numbers::pi / 180.0);
    turn(directions[2], directions[1], 25.0 * std::numbers::pi / 180.0);
    return directions;
}

}  // namespace

namespace LyrSceneGraph {

CameraTransform::CameraTransform() noexcept
    : mBoxMin{-0.5, -0.5, -0.5}, mBoxMax{0.5, 0.5, 0.5}, mTurn(firstDirection()) {}

double CameraTransform::width() const noexcept {
    return std::max(double(mMax.x) - double(mMin.x), 1.0);
}

double CameraTransform::height() const noexcept {
    return std::max(double(mMax.y) - double(mMin.y), 1.0);
}

void CameraTransform::setViewport(const LyrVector2<float>& min, const LyrVector2<float>& size) noexcept {
    mMin = min;
    mMax = min + size;
    if (mFitted) {
        fitNow();
    }
}

void CameraTransform::setSliceView(int axis) noexcept {
    mKind = Kind::Slice;
    mAxis = std::clamp(axis, 0, 2);
    fit();
}

void CameraTransform::setSceneView() noexcept {
    mKind = Kind::Scene;
    fit();
}

void CameraTransform::setBox(const LyrVector3<float>& min, const LyrVector3<float>& max) noexcept {
    bool valid = true;
    for (int i = 0; i < 3; ++i) {
        valid = valid && std::isfinite(min[i]) && std::isfinite(max[i]) && max[i] > min[i];
    }
    mBoxMin = valid ? toVector(min) : Vector{-0.5, -0.5, -0.5};
    mBoxMax = valid ? toVector(max) : Vector{0.5, 0.5, 0.5};
    if (mFitted) {
        fitNow();
    }
}

void CameraTransform::setSlice(int index, float position) noexcept {
    mSliceIndex = index;
    if (mKind == Kind::Slice && std::isfinite(position)) {
        mCenter[static_cast<std::size_t>(mAxis)] = double(position);
    }
}

void CameraTransform::fit() noexcept {
    mFitted = true;
    mTurn = firstDirection();
    fitNow();
}

double CameraTransform::fittedScale() const noexcept {
    if (mKind == Kind::Scene) {
        return FILLED * std::min(width(), height()) / diagonal(mBoxMin, mBoxMax);
    }
    const auto right = static_cast<std::size_t>(rightAxis(mAxis));
    const auto down = static_cast<std::size_t>(downAxis(mAxis));
    return FILLED * std::min(width() / (mBoxMax[right] - mBoxMin[right]), height() / (mBoxMax[down] - mBoxMin[down]));
}

void CameraTransform::fitNow() noexcept {
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isSliceAxis = mKind == Kind::Slice && i == static_cast<std::size_t>(mAxis);
        mCenter[i] = isSliceAxis ? mCenter[i] : (mBoxMin[i] + mBoxMax[i]) / 2.0;
    }
    mScale = fittedScale();
}

void CameraTransform::zoom(double factor, const LyrVector2<float>& at) noexcept {
    if (!std::isfinite(factor) || factor <= 0.0) {
        return;
    }
    const double before = mScale;
    const double fitted = fittedScale();
    mScale = std::clamp(mScale * factor, fitted * SMALLEST_ZOOM, fitted * LARGEST_ZOOM);
    mFitted = false;
    if (mKind == Kind::Slice) {
        const double right = double(at.x) - (double(mMin.x) + width() / 2.0);
        const double down = double(at.y) - (double(mMin.y) + height() / 2.0);
        mCenter[static_cast<std::size_t>(rightAxis(mAxis))] += right / before - right / mScale;
        mCenter[static_cast<std::size_t>(downAxis(mAxis))] += down / before - down / mScale;
    }
}

void CameraTransform::pan(const LyrVector2<float>& pixels) noexcept {
    const double right = double(pixels.x) / mScale;
    const double down = double(pixels.y) / mScale;
    if (!std::isfinite(right) || !std::isfinite(down)) {
        return;
    }
    mFitted = false;
    if (mKind == Kind::Slice) {
        mCenter[static_cast<std::size_t>(rightAxis(mAxis))] -= right;
        mCenter[static_cast<std::size_t>(downAxis(mAxis))] -= down;
    } else {
        mCenter = sum(mCenter, sum(scaled(mTurn[0], -right), scaled(mTurn[1], down)));
    }
}

void CameraTransform::rotate(const LyrVector2<float>& pixels) noexcept {
    const double perPixel = std::numbers::pi / std::min(width(), height());
    if (mKind != Kind::Scene || !std::isfinite(pixels.x) || !std::isfinite(pixels.y)) {
        return;
    }
    mFitted = false;
    turn(mTurn[0], mTurn[2], double(pixels.x) * perPixel);
    turn(mTurn[2], mTurn[1], double(pixels.y) * perPixel);
    // Many small turns stay a rotation.
    mTurn[0] = unit(mTurn[0]);
    mTurn[2] = unit(cross(mTurn[0], mTurn[1]));
    mTurn[1] = cross(mTurn[2], mTurn[0]);
}

Vector CameraTransform::toEye(const Vector& world) const noexcept {
    const Vector from = sum(world, scaled(mCenter, -1.0));
    if (mKind != Kind::Scene) {
        return {from[static_cast<std::size_t>(rightAxis(mAxis))], -from[static_cast<std::size_t>(downAxis(mAxis))],
                -from[static_cast<std::size_t>(mAxis)]};
    }
    return {dot(mTurn[0], from), dot(mTurn[1], from), dot(mTurn[2], from) - depths().eye};
}

CameraTransform::Depths CameraTransform::depths() const noexcept {
    const double eye = height() / 2.0 / mScale / std::tan(HALF_FIELD);
    const Vector middle = scaled(sum(mBoxMin, mBoxMax), 0.5);
    const double reach = diagonal(mCenter, middle) + diagonal(mBoxMin, mBoxMax) / 2.0;
    const double far = eye + reach * 1.01;
    return {eye, std::max(eye - reach * 1.01, far / 1000.0), far};
}

/** Everything in the box lies between the near and the far plane of a slice view. */
double CameraTransform::sliceDepthScale() const noexcept {
    const auto axis = static_cast<std::size_t>(mAxis);
    return 0.5 / (mBoxMax[axis] - mBoxMin[axis]);
}

LyrVector2<float> CameraTransform::widgetToDevice(const LyrVector2<float>& widget) const noexcept {
    return {static_cast<float>((double(widget.x) - double(mMin.x)) * 2.0 / width() - 1.0),
            static_cast<float>(1.0 - (double(widget.y) - double(mMin.y)) * 2.0 / height())};
}

LyrVector3<float> CameraTransform::worldToWidget(const LyrVector3<float>& world) const noexcept {
    const Vector eye = toEye(toVector(world));
    double pixels = mScale;
    double depth = -eye[2] * sliceDepthScale();
    if (mKind == Kind::Scene) {
        const Depths at = depths();
        const double distance = std::max(-eye[2], at.near * 1e-3);
        pixels = mScale * at.eye / distance;
        depth = (at.far + at.near - 2.0 * at.far * at.near / distance) / (at.far - at.near);
    }
    return toFloats(
        {double(mMin.x) + width() / 2.0 + eye[0] * pixels, double(mMin.y) + height() / 2.0 - eye[1] * pixels, depth});
}

LyrVector3<float> CameraTransform::widgetToWorld(const LyrVector2<float>& widget) const noexcept {
    if (mKind != Kind::Scene) {
        return widgetToWorld(widget, 0.0f);
    }
    const Depths at = depths();
    return widgetToWorld(widget,
                         static_cast<float>((at.far + at.near - 2.0 * at.far * at.near / at.eye) / (at.far - at.near)));
}

LyrVector3<float> CameraTransform::widgetToWorld(const LyrVector2<float>& widget, float depth) const noexcept {
    const double right = double(widget.x) - (double(mMin.x) + width() / 2.0);
    const double down = double(widget.y) - (double(mMin.y) + height() / 2.0);
    Vector world = mCenter;
    if (mKind != Kind::Scene) {
        world[static_cast<std::size_t>(rightAxis(mAxis))] += right / mScale;
        world[static_cast<std::size_t>(downAxis(mAxis))] += down / mScale;
        world[static_cast<std::size_t>(mAxis)] += double(depth) / sliceDepthScale();
        return toFloats(world);
    }
    const Depths at = depths();
    const double distance = 2.0 * at.far * at.near / (at.far + at.near - double(depth) * (at.far - at.near));
    const double perPixel = distance / (mScale * at.eye);
    world = sum(world, scaled(mTurn[0], right * perPixel));
    world = sum(world, scaled(mTurn[1], -down * perPixel));
    return toFloats(sum(world, scaled(mTurn[2], at.eye - distance)));
}

CameraTransform::Matrix CameraTransform::getModelView() const noexcept {
    Matrix matrix{};
    matrix[15] = 1.0f;
    const Vector origin = toEye({0.0, 0.0, 0.0});
    for (std::size_t column = 0; column < 3; ++column) {
        Vector axis{};
        axis[column] = 1.0;
        const Vector image = toEye(axis);
        for (std::size_t row = 0; row < 3; ++row) {
            matrix[column * 4 + row] = static_cast<float>(image[row] - origin[row]);
        }
    }
    for (std::size_t row = 0; row < 3; ++row) {
        matrix[12 + row] = static_cast<float>(origin[row]);
    }
    return matrix;
}

CameraTransform::Matrix CameraTransform::getProjection() const noexcept {
    Matrix matrix{};
    if (mKind != Kind::Scene) {
        matrix[0] = static_cast<float>(2.0 * mScale / width());
        matrix[5] = static_cast<float>(2.0 * mScale / height());
        matrix[10] = static_cast<float>(-sliceDepthScale());
        matrix[15] = 1.0f;
        return matrix;
    }
    const Depths at = depths();
    const double focal = 1.0 / std::tan(HALF_FIELD);
    matrix[0] = static_cast<float>(focal * height() / width());
    matrix[5] = static_cast<float>(focal);
    matrix[10] = static_cast<float>((at.far + at.near) / (at.near - at.far));
    matrix[11] = -1.0f;
    matrix[14] = static_cast<float>(2.0 * at.far * at.near / (at.near - at.far));
    return matrix;
}

}  // namespace LyrSceneGraph
