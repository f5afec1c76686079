#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/legend/LegendLayout.h>
#include <lyr_core/LyrObject.h>

#include <QColor>
#include <QFont>

class LyqUnitConverter;
class QPainter;

/** A colour bar legend read from a table and its render settings, ready to be painted onto any painter. */
namespace lys::legend {

/** The background that views make transparent. */
inline constexpr QRgb KEY_COLOR = 0xff000008u;

/** How the legend's texts look. Without render settings: black with a white outline in the application's font. */
struct Style {
    QFont font;  ///< scaled for the resolution
    bool outlined = true;
    QColor textColor = Qt::black;
    QColor outlineColor = Qt::white;
    /** On a background of the key colour the outermost layer of a text has no soft edge: it would stay as a dark
     * fringe. */
    bool keyed = false;
};

/** What is read before anything is laid out. */
struct Reading {
    Input input;
    Style style;
};

/** Reads table and settings (either may be null). `converter` is set to the table's quantity and gives the unit's
 *  abbreviation in the caption. */
LYS_COLORTABLE_EXPORT Reading read(const LyrObject* table, const LyrObject* settings, LyqUnitConverter& converter,
                                   const QSize& size, float dotsPerInch);

/** Text sizes in the style's font, label texts in the converter's unit; tables of percentages have two decimals. */
LYS_COLORTABLE_EXPORT TextMeasure measureOf(const Style& style, const LyrObject* table,
                                            const LyqUnitConverter& converter);

/** A label's text. */
LYS_COLORTABLE_EXPORT QString labelText(const LyrObject* table, const LyqUnitConverter& converter, float value);
/** The settings' caption with every "%l" replaced by the unit's abbreviation. */
LYS_COLORTABLE_EXPORT QString captionText(const LyrObject* table, const LyrObject* settings,
                                          const LyqUnitConverter& converter);

/** The font that a font string describes, as the toolkit writes it now or wrote it in its 3.3 series. A string that is
 * empty, "Default" or none of that gives the application's font. `valid` (may be null) tells which. Of a size in points
 * six digits count, as many as the toolkit writes. */
LYS_COLORTABLE_EXPORT QFont fontFromString(const QString& text, bool* valid = nullptr);

/** True for a table that can be drawn: at least two boundaries and one section more. */
LYS_COLORTABLE_EXPORT bool isDrawable(const LyrObject* table);

/** Draws a text with its baseline's start at a point: eight strokes of the outline, then the text. */
LYS_COLORTABLE_EXPORT void paintText(QPainter& painter, const QPoint& baseline, const QString& text,
                                     const Style& style);
/** The same in a rectangle, with the toolkit's alignment and text flags. */
LYS_COLORTABLE_EXPORT void paintText(QPainter& painter, const QRect& rect, int flags, const QString& text,
                                     const Style& style);

/** Paints caption, bar and labels; the background is left alone. A table that is not drawable paints nothing. */
LYS_COLORTABLE_EXPORT void paint(QPainter& painter, const Reading& reading, const Layout& layout,
                                 const TextMeasure& measure, const LyrObject* table);

}  // namespace lys::legend
