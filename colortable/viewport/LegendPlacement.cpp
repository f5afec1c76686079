#include <colortable/viewport/LegendPlacement.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lys_core/LyqScaling.h>

#include <algorithm>

namespace lys::viewport {

namespace {

constexpr float MARGIN = 10.0f;
constexpr float SMALLEST_SIZE = 0.01f;
constexpr float LARGEST_SIZE = 1.0f;
constexpr int SHORTEST_LENGTH = 2;
constexpr QRgb KEY = 0x000008u;
constexpr QRgb RGB_MASK = 0xffffffu;

struct FreeArea {
    float left, top, right, bottom;
};

FreeArea freeArea(const Viewport& viewport, float dotsPerInch) {
    const float margin = LyqScaling::getScaledPixelf(dotsPerInch, MARGIN);
    return {viewport.x + margin, viewport.y + margin, viewport.x + viewport.width - margin,
            viewport.y + viewport.height - margin};
}

/** Toward zero; no view comes near the bounds, which keep the conversion defined. */
int truncated(double value) {
    constexpr double FARTHEST = 1 << 28;
    return static_cast<int>(std::clamp(value, -FARTHEST, FARTHEST));
}

/** A fraction of a length, the product in single precision. */
int fractionOf(float length, float size) {
    return std::max(SHORTEST_LENGTH,
                    truncated(static_cast<double>(std::clamp(size, SMALLEST_SIZE, LARGEST_SIZE) * length)));
}

/** The start of something centred between two edges, formed in double precision. */
double centred(float low, float high, int length) {
    return (static_cast<double>(low) + static_cast<double>(high)) / 2.0 - static_cast<double>(length) / 2.0;
}

Place placeVertical(const FreeArea& area, const Wish& wish) {
    const QSize size(wish.hint.width(), fractionOf(area.bottom - area.top, wish.size));
    const float x = wish.position == Lyr::Right ? area.right - static_cast<float>(size.width()) : area.left;
    double y = centred(area.top, area.bottom, size.height());
    if (wish.alignment == Lyr::Top) {
        y = static_cast<double>(area.top);
    } else if (wish.alignment == Lyr::Bottom) {
        y = static_cast<double>(area.bottom - static_cast<float>(size.height()));
    }
    return {QPoint(truncated(static_cast<double>(x)), truncated(y)), size};
}

// The three ways of alignment are read along the bar: the top of a vertical bar is the right end of a horizontal one.
Place placeHorizontal(const FreeArea& area, const Wish& wish) {
    const QSize size(fractionOf(area.right - area.left, wish.size), wish.hint.height());
    const float y = wish.position == Lyr::Bottom ? area.bottom - static_cast<float>(size.height()) : area.top;
    double x = centred(area.left, area.right, size.width());
    if (wish.alignment == Lyr::Top || wish.alignment == Lyr::Right) {
        x = static_cast<double>(area.right - static_cast<float>(size.width()));
    } else if (wish.alignment == Lyr::Bottom || wish.alignment == Lyr::Left) {
        x = static_cast<double>(area.left);
    }
    return {QPoint(truncated(x), truncated(static_cast<double>(y))), size};
}

}  // namespace

Place placeLegend(const Viewport& viewport, float dotsPerInch, const Wish& wish) {
    const FreeArea area = freeArea(viewport, dotsPerInch);
    const bool horizontal = wish.position == Lyr::Bottom || wish.position == Lyr::Top;
    Place place = horizontal ? placeHorizontal(area, wish) : placeVertical(area, wish);
    place.size = place.size.expandedTo(wish.minimumHint);
    return place;
}

LyrVector3<float> centreOf(const QRect& frame) {
    return {static_cast<float>(frame.left() + frame.right()) * 0.5f,
            static_cast<float>(frame.top() + frame.bottom()) * 0.5f, 0.5f};
}

LyrVector3<float> widgetToDevice(const LyrVector3<float>& point, const Viewport& viewport) {
    return {(point.x + 0.5f - viewport.x) * 2.0f / viewport.width - 1.0f,
            (point.y + 0.5f - viewport.y) * -2.0f / viewport.height + 1.0f, point.z * 2.0f - 1.0f};
}

std::array<LyrVector3<float>, 4> quadCorners(const QRect& frame, const Viewport& viewport) {
    const float left = static_cast<float>(frame.left()) - 0.5f;
    const float right = static_cast<float>(frame.right()) + 0.5f;
    const float bottom = static_cast<float>(frame.bottom()) + 0.5f;
    const float top = static_cast<float>(frame.top()) - 0.5f;
    const auto corner = [&](float x, float y) { return widgetToDevice({x, y, 0.5f}, viewport); };
    return {corner(left, bottom), corner(right, bottom), corner(right, top), corner(left, top)};
}

int textureLength(int length) {
    // No texture comes near this; it keeps the shift defined.
    constexpr int LARGEST = 1 << 30;
    int result = length > 0 ? 1 : 0;
    while (result > 0 && result < length && result < LARGEST) {
        result <<= 1;
    }
    return result;
}

bool keyedPixels(const QImage& image, PixelBytes& bytes) {
    const QImage source = image.format() == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_RGB32);
    const auto width = static_cast<std::size_t>(std::max(source.width(), 0));
    const auto height = static_cast<std::size_t>(std::max(source.height(), 0));
    if (!bytes.resize(width * height * 4)) {
        return false;
    }
    unsigned char* to = bytes.data();
    for (std::size_t y = 0; y < height; ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(source.constScanLine(static_cast<int>(y)));
        for (const QRgb* const end = from + width; from != end; ++from, to += 4) {
            to[0] = static_cast<unsigned char>(qRed(*from));
            to[1] = static_cast<unsigned char>(qGreen(*from));
            to[2] = static_cast<unsigned char>(qBlue(*from));
            to[3] = (*from & RGB_MASK) == KEY ? 0 : 255;
        }
    }
    return true;
}

}  // namespace lys::viewport
