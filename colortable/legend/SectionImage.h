#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/model/LyrColorLookupTableSection.h>

#include <QImage>

#include <vector>

class QPainter;

/** Pictures of one section along an axis. Each colour is shown twice, composited over white and over black, so that its
 *  opacity can be seen. */
namespace lys::legend {

/** Which way a picture of a section runs, and which half of it lies over white. */
enum class Halves {
    LeftOverWhite,   ///< values grow upwards; the left half over white (vertical bar)
    LowerOverWhite,  ///< values grow to the right; the lower half over white (horizontal bar)
    UpperOverWhite   ///< values grow to the right; the upper half over white (swatch in the table editor)
};

/** A colour over white and over black, each channel truncated to 0…255; NaN counts as 0. */
LYS_COLORTABLE_EXPORT QRgb overWhite(const LyrRGBA<float>& color);
LYS_COLORTABLE_EXPORT QRgb overBlack(const LyrRGBA<float>& color);
/** A colour of the toolkit: red, green and blue times 255, truncated. */
LYS_COLORTABLE_EXPORT QRgb opaque(const LyrRGBA<float>& color);

/** The section's colours at the pixels 0 to length - 1 of the interval (0, length - 1); transparent black where it has
 * none. Nothing, and an error, when memory ran out. */
LYS_COLORTABLE_EXPORT std::vector<LyrRGBA<float>> sampleSection(int length, const LyrColorLookupTable::Section& section,
                                                                const LyrColorLookupTable::Section* previous,
                                                                const LyrColorLookupTable::Section* next);

/** The picture as an image without alpha. Null if a side is not positive or memory ran out. */
LYS_COLORTABLE_EXPORT QImage sectionImage(const QSize& size, Halves halves, const LyrColorLookupTable::Section& section,
                                          const LyrColorLookupTable::Section* previous,
                                          const LyrColorLookupTable::Section* next);

/** Pixels of a picture along its axis, both included; none if the last lies before the first. */
struct Lines {
    int first;
    int last;
};
/** The lines of a picture that are inside an area. */
LYS_COLORTABLE_EXPORT Lines linesInside(const QRect& picture, Halves halves, const QRect& area);

/** The same picture drawn as filled rectangles, the form that vector formats keep sharp. What lies outside the
 * painter's window is neither drawn nor computed: a picture may be much longer than what it is drawn on. Nothing is
 * drawn, with an error, when memory ran out. */
LYS_COLORTABLE_EXPORT void paintSection(QPainter& painter, const QRect& rect, Halves halves,
                                        const LyrColorLookupTable::Section& section,
                                        const LyrColorLookupTable::Section* previous,
                                        const LyrColorLookupTable::Section* next);

}  // namespace lys::legend
