#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrScratch.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_core/Lyrenum.h>

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <array>

/** Where a legend stands in a viewport and what of it is drawn, worked out from numbers alone. Widget pixels grow to
 * the right and down; device coordinates run from -1 to 1, to the right and up. */
namespace lys::viewport {

/** A rectangle of a view in widget pixels; the maximum is the outer edge of the last pixel. */
struct Viewport {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;

    bool isEmpty() const { return !(width > 0.0f) || !(height > 0.0f); }
};

/** What a legend's settings and widget say about its place. */
struct Wish {
    Lyrenum position;   ///< side of the view
    Lyrenum alignment;  ///< along the side: bottom (or left) end, centre, top (or right) end
    float size;         ///< fraction of the free length, taken into [0.01, 1]
    QSize hint;
    QSize minimumHint;
};

struct Place {
    QPoint position;
    QSize size;
};

/** Places a legend with a margin of 10 pixels scaled to the resolution. The bar runs along its side with the wished
 * fraction of the free length, at least 2 pixels. The position, truncated toward zero, is that of this size; the
 * minimum hint enlarges the legend afterwards, away from its anchor, even into the margin. */
LYS_COLORTABLE_EXPORT Place placeLegend(const Viewport& viewport, float dotsPerInch, const Wish& wish);

/** The centre of a frame, its last pixel being its right and bottom; z is 0.5. */
LYS_COLORTABLE_EXPORT LyrVector3<float> centreOf(const QRect& frame);

/** From the middle of a widget pixel to device coordinates; z from [0, 1] to [-1, 1]. The viewport is not empty. */
LYS_COLORTABLE_EXPORT LyrVector3<float> widgetToDevice(const LyrVector3<float>& point, const Viewport& viewport);

/** The corners of a frame on its pixel edges, in device coordinates: lower left, lower right, upper right, upper left.
 */
LYS_COLORTABLE_EXPORT std::array<LyrVector3<float>, 4> quadCorners(const QRect& frame, const Viewport& viewport);

/** The smallest power of two that is not below a length; 0 for a length that is not positive. */
LYS_COLORTABLE_EXPORT int textureLength(int length);

/** Bytes of an image: small ones need no memory. */
using PixelBytes = LyrScratch<unsigned char, 1040>;

/** The image's pixels as bytes R, G, B, A, row by row from the first scan line: opaque, but for the key colour (0, 0,
 * 8), which becomes transparent. Nothing is premultiplied. False when memory ran out. */
LYS_COLORTABLE_EXPORT bool keyedPixels(const QImage& image, PixelBytes& bytes);

}  // namespace lys::viewport
