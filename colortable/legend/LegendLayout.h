#pragma once

#include <colortable/LysColortableExport.h>

#include <QRect>
#include <QSize>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

/** Where everything of a colour bar legend stands, worked out from numbers and text sizes alone.
 *
 *  Coordinates are the widget's pixels. Rectangles are QRect with its inclusive right() and bottom(); an empty caption
 * has bottom() -1, which shifts what follows by one pixel. The bar rectangle's width is not always the boxes' width: a
 * box is `thickness` pixels across from the bar's left (vertical) or top (horizontal) edge. */
namespace lys::legend {

/** A thickness beyond this, unscaled, counts as this; it keeps sums of lengths within int. A negative one counts as 0.
 */
inline constexpr long long LARGEST_THICKNESS = 100000;

/** What is to be laid out. */
struct Input {
    QSize size;                ///< of the widget
    float dotsPerInch = 0.0f;  ///< 0: the application's default
    bool horizontal = false;
    bool textRight = true;     ///< labels right of a vertical bar, on top of a horizontal one
    bool alignRight = true;    ///< labels of a vertical bar flush right in their column
    long long thickness = 24;  ///< across the bar, unscaled
    QString caption;
    std::vector<float> positions;  ///< the table's boundaries
    bool autoLabel = true;
    bool lowerExtension = true;  ///< boxes beyond the range are shown
    bool upperExtension = true;
};

/** Texts as the font makes them. */
struct TextMeasure {
    std::function<QRect(const QString&)> boundingRect;  ///< relative to the baseline's start
    std::function<QString(float)> labelText;            ///< of a label's value
};

struct Layout {
    QRect caption;
    QRect labels;
    QRect bar;
    QSize sizeHint;
    QSize minimumSizeHint;
    int thickness = 0;  ///< across the bar, scaled
    int widestLabel = 0;
    int tallestLabel = 0;
    int extensionLength = 0;  ///< kept free for an extension box at each end of the bar, shown or not
};

struct Label {
    float value = 0.0f;
    QString text;
    int x = 0;
    int baseline = 0;
    bool drawn = false;
};

/** A box of the bar and the section that colours it. */
struct Box {
    int section = 0;
    QRect rect;
};

/** Number of intervals between automatic labels where `fit` labels fit: 1 to 5 or 10. */
LYS_COLORTABLE_EXPORT int intervalCount(long long fit);

/** The labels' values. Automatic ones divide the range evenly, summed up in single precision, with values below a
 * thousandth of the range written as 0; otherwise there is one at each boundary. `available` is the length for them
 * along the bar, `labelLength` what a label takes of it. Automatic ones need two boundaries and a finite range that is
 * not empty. */
LYS_COLORTABLE_EXPORT std::vector<float> labelValues(const Input& input, int available, int labelLength);
/** The labels' values for a finished layout. */
LYS_COLORTABLE_EXPORT std::vector<float> labelValues(const Input& input, const Layout& layout);

LYS_COLORTABLE_EXPORT Layout layOut(const Input& input, const TextMeasure& measure);

/** Coordinate of a value along the bar: x of a horizontal one, y of a vertical one. 0 for an empty range and a bar that
 * is too short. */
LYS_COLORTABLE_EXPORT int valueToCoordinate(const Input& input, const Layout& layout, float value);

LYS_COLORTABLE_EXPORT std::optional<QRect> lowerExtensionBox(const Input& input, const Layout& layout);
LYS_COLORTABLE_EXPORT std::optional<QRect> upperExtensionBox(const Input& input, const Layout& layout);
/** The boxes of the sections between the boundaries, in their order. Neighbours share the line of their frames. */
LYS_COLORTABLE_EXPORT std::vector<Box> innerBoxes(const Input& input, const Layout& layout);

/** The labels with their places, in the order of their values. The end labels are always drawn, an inner one only where
 * it does not touch the last one drawn: from the left, or from the top. */
LYS_COLORTABLE_EXPORT std::vector<Label> placeLabels(const Input& input, const Layout& layout,
                                                     const TextMeasure& measure);

}  // namespace lys::legend
