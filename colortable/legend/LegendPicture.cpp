#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LegendPicture.h>
#include <colortable/legend/SectionImage.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqScaling.h>
#include <lys_core/LyqUnitConverter.h>

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QStringList>

#include <cmath>
#include <functional>

namespace lys::legend {

namespace {

using Section = LyrColorLookupTable::Section;

/** Without settings the bar is thicker than the settings' own default. */
constexpr long long THICKNESS_WITHOUT_SETTINGS = 24;
constexpr double LARGEST_POINT_SIZE = 1000.0;
constexpr int LARGEST_PIXEL_SIZE = 4000;
/** No number of a font string is larger, letter and word spacing included. */
constexpr double LARGEST_FONT_FIELD = 10000.0;
/** Of the longer form the last number holds the flags of the style strategy, 16 bits. */
constexpr qsizetype STYLE_STRATEGY_FIELD = 15;
constexpr double LARGEST_STYLE_STRATEGY = 65535.0;

template <class T>
std::vector<T> readList(const LyrObject* object, Lyrenum id) {
    LyrValueArrayOPCache<T> cache;
    cache.load(object, id);
    return cache.items();
}

bool isTrue(const LyrObject* object, Lyrenum id, bool fallback) {
    return lyrGetValue<Lyrenum>(object, id, fallback ? 1 : 0) != 0;
}

Lyrenum quantityOf(const LyrObject* table) {
    return lyrGetValue(table, Lyr::Quantity, Lyr::Length);
}

QFont withoutSubpixels(QFont font) {
    font.setStyleStrategy(QFont::StyleStrategy(font.styleStrategy() | QFont::NoSubpixelAntialias));
    return font;
}

QFont withoutSmoothing(QFont font) {
    const int kept = withoutSubpixels(font).styleStrategy() & ~QFont::PreferAntialias;
    font.setStyleStrategy(QFont::StyleStrategy(kept | QFont::NoAntialias));
    return font;
}

Style readStyle(const LyrObject* settings, float dotsPerInch) {
    Style style;
    const QString font = QString::fromUtf8(lyrGetValue<const char*>(settings, Lyr::Font, ""));
    style.font = LyqScaling::getScaledFont(fontFromString(font), dotsPerInch);
    // Coloured fringes of subpixel smoothing belong to one screen's layout, legends go onto many.
    style.font = withoutSubpixels(style.font);
    style.outlined = isTrue(settings, Lyr::HasOutline, true);
    style.textColor = QColor(opaque(lyrGetValue(settings, Lyr::Color, LyrRGBA<float>::BLACK())));
    style.outlineColor = QColor(opaque(lyrGetValue(settings, Lyr::OutlineColor, LyrRGBA<float>::WHITE())));
    return style;
}

/** The sections of a table by index; null where a link leads to none. */
class Sections {
public:
    explicit Sections(const LyrObject* table) : mLinks(readList<LyrObjectLink>(table, Lyr::SectionList)) {}

    const Section* at(int index) const {
        if (index < 0 || index >= static_cast<int>(mLinks.size())) {
            return nullptr;
        }
        const LyrObject* object = mLinks[static_cast<std::size_t>(index)].getLink();
        const bool fits = object && object->getMetaClass().isOfType(Section::metaClass());
        return fits ? static_cast<const Section*>(object) : nullptr;
    }

private:
    std::vector<LyrObjectLink> mLinks;
};

/** A box: a black frame and the section's colours in it. A box of a few pixels is all frame. */
void paintBox(QPainter& painter, const QRect& box, const Input& input, const Sections& sections, int index) {
    painter.fillRect(box, Qt::black);
    const int frame = LyqScaling::getScaledPixeli(input.dotsPerInch, 1);
    const QRect inside = box.adjusted(frame, frame, -frame, -frame);
    if (const Section* section = sections.at(index)) {
        paintSection(painter, inside, input.horizontal ? Halves::LowerOverWhite : Halves::LeftOverWhite, *section,
                     sections.at(index - 1), sections.at(index + 1));
    }
}

void paintBar(QPainter& painter, const Input& input, const Layout& layout, const LyrObject* table) {
    const Sections sections(table);
    if (const auto upper = upperExtensionBox(input, layout)) {
        paintBox(painter, *upper, input, sections, static_cast<int>(input.positions.size()));
    }
    for (const Box& box : innerBoxes(input, layout)) {
        paintBox(painter, box.rect, input, sections, box.section);
    }
    if (const auto lower = lowerExtensionBox(input, layout)) {
        paintBox(painter, *lower, input, sections, 0);
    }
}

/** Whether the fields of a font string are what the toolkit writes: family, point size, pixel size, then numbers, and
 * in the longer forms a style name at the end. */
bool isFontDescription(const QStringList& fields) {
    const bool old = fields.size() == 10 || fields.size() == 11;
    if ((!old && fields.size() != 16 && fields.size() != 17) || fields.first().trimmed().isEmpty()) {
        return false;
    }
    const qsizetype numbers = old ? 10 : 16;
    for (qsizetype i = 1; i < numbers; ++i) {
        bool ok = false;
        const double number = fields.at(i).toDouble(&ok);
        const double largest = i == STYLE_STRATEGY_FIELD ? LARGEST_STYLE_STRATEGY : LARGEST_FONT_FIELD;
        if (!ok || !(std::fabs(number) <= largest)) {
            return false;
        }
    }
    const double points = fields.at(1).toDouble();
    const int pixels = fields.at(2).toInt();
    const bool hasPoints = points > 0.0 && points <= LARGEST_POINT_SIZE;
    // The toolkit takes the pixels where there are some, whatever the points are.
    return pixels > 0 ? pixels <= LARGEST_PIXEL_SIZE && (hasPoints || points == -1.0) : hasPoints;
}

/** Draws a text somewhere, moved by an offset. */
using DrawText = std::function<void(QPainter&, const QPoint&)>;

void drawOutline(QPainter& painter, const DrawText& draw, const Style& style) {
    // One of the upper strokes is missing and one of the lower ones doubled: the look that users know.
    constexpr QPoint STROKES[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}, {-1, 0}, {1, 0}, {0, 1}, {0, 1}};
    painter.setPen(QPen(style.outlineColor, 0));
    for (const QPoint& stroke : STROKES) {
        draw(painter, stroke);
    }
}

void drawSoft(QPainter& painter, const DrawText& draw, const Style& style) {
    painter.setFont(withoutSubpixels(style.font));
    if (style.outlined) {
        drawOutline(painter, draw, style);
    }
    painter.setPen(QPen(style.textColor, 0));
    draw(painter, {});
}

/** Draws in a layer of its own: the smoothed text covers only pixels that the hard outline, or the hard text under it,
 * has covered before. Over them it blends with the outline, never with the background. */
void drawKeyed(QPainter& painter, const QRect& bounds, const DrawText& draw, const Style& style) {
    const QRect shown = bounds.intersected(painter.window());
    const qreal ratio = painter.device()->devicePixelRatioF();
    QImage layer(shown.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    if (layer.isNull()) {
        return;
    }
    layer.setDevicePixelRatio(ratio);
    layer.fill(Qt::transparent);
    QPainter inner(&layer);
    inner.translate(-shown.topLeft());
    inner.setFont(withoutSmoothing(style.font));
    if (style.outlined) {
        drawOutline(inner, draw, style);
        draw(inner, {});
        inner.setFont(withoutSubpixels(style.font));
        inner.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    }
    inner.setPen(QPen(style.textColor, 0));
    draw(inner, {});
    inner.end();
    painter.drawImage(shown.topLeft(), layer);
}

void drawLayers(QPainter& painter, const QRect& bounds, const DrawText& draw, const Style& style) {
    painter.save();
    if (style.keyed) {
        // Room for the outline and for what hangs over the letters' boxes.
        const int room = QFontMetrics(style.font).height();
        drawKeyed(painter, bounds.adjusted(-room, -room, room, room), draw, style);
    } else {
        drawSoft(painter, draw, style);
    }
    painter.restore();
}

}  // namespace

QFont fontFromString(const QString& text, bool* valid) {
    QFont font = QGuiApplication::font();
    const bool fits = isFontDescription(text.split(QLatin1Char(','))) && font.fromString(text);
    if (fits && font.pointSizeF() > 0.0) {
        // The toolkit writes six digits of a size: a font that is written once more stays the same.
        font.setPointSizeF(QString::number(font.pointSizeF()).toDouble());
    }
    if (valid) {
        *valid = fits;
    }
    return fits ? font : QGuiApplication::font();
}

QString labelText(const LyrObject* table, const LyqUnitConverter& converter, float value) {
    if (quantityOf(table) == Lyr::Percent) {
        return QStringLiteral("%1").arg(static_cast<double>(value), 0, 'f', 2);
    }
    return converter.internalToDisplayString(static_cast<double>(value));
}

QString captionText(const LyrObject* table, const LyrObject* settings, const LyqUnitConverter& converter) {
    QString text = QString::fromUtf8(lyrGetValue<const char*>(settings, Lyr::Description, ""));
    const bool percent = quantityOf(table) == Lyr::Percent;
    return text.replace(QStringLiteral("%l"), percent ? QStringLiteral("%") : converter.getDisplayUnitAbbr());
}

Reading read(const LyrObject* table, const LyrObject* settings, LyqUnitConverter& converter, const QSize& size,
             float dotsPerInch) {
    const Lyrenum quantity = quantityOf(table);
    if (quantity != Lyr::Percent) {
        converter.setQuantity(quantity);
    }
    const Lyrenum position = lyrGetValue(settings, Lyr::Position, Lyr::Left);
    const Lyrenum textPosition = lyrGetValue(settings, Lyr::TextPosition, Lyr::Right);
    const auto finite = lyrGetValue(table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{0, 0});

    Reading reading;
    reading.style = readStyle(settings, dotsPerInch);
    Input& input = reading.input;
    input.size = size;
    input.dotsPerInch = dotsPerInch;
    input.horizontal = position == Lyr::Bottom || position == Lyr::Top;
    input.textRight = textPosition == Lyr::Right || (input.horizontal && textPosition == Lyr::Top);
    input.alignRight = lyrGetValue(settings, Lyr::TextAlignment, Lyr::Right) == Lyr::Right;
    input.thickness = lyrGetValue(settings, Lyr::Thickness, THICKNESS_WITHOUT_SETTINGS);
    input.caption = captionText(table, settings, converter);
    input.positions = readList<float>(table, Lyr::PositionList);
    input.autoLabel = isTrue(table, Lyr::AutoLabel, true);
    input.lowerExtension = finite.first == 0;
    input.upperExtension = finite.second == 0;
    return reading;
}

TextMeasure measureOf(const Style& style, const LyrObject* table, const LyqUnitConverter& converter) {
    return {[metrics = QFontMetrics(style.font)](const QString& text) { return metrics.boundingRect(text); },
            [table, &converter](float value) { return labelText(table, converter, value); }};
}

bool isDrawable(const LyrObject* table) {
    const auto positions = readList<float>(table, Lyr::PositionList).size();
    return positions >= 2 && readList<LyrObjectLink>(table, Lyr::SectionList).size() == positions + 1;
}

void paintText(QPainter& painter, const QPoint& baseline, const QString& text, const Style& style) {
    const QRect bounds = QFontMetrics(style.font).boundingRect(text).translated(baseline);
    drawLayers(
        painter, bounds, [&](QPainter& on, const QPoint& by) { on.drawText(baseline + by, text); }, style);
}

void paintText(QPainter& painter, const QRect& rect, int flags, const QString& text, const Style& style) {
    const QRect bounds = QFontMetrics(style.font).boundingRect(rect, flags, text);
    drawLayers(
        painter, bounds, [&](QPainter& on, const QPoint& by) { on.drawText(rect.translated(by), flags, text); }, style);
}

void paint(QPainter& painter, const Reading& reading, const Layout& layout, const TextMeasure& measure,
           const LyrObject* table) {
    if (!isDrawable(table)) {
        return;
    }
    const Input& input = reading.input;
    if (!input.caption.isEmpty()) {
        const int left = layout.caption.left() + (reading.style.outlined ? 1 : 0);
        paintText(painter, QPoint(left, layout.caption.bottom()), input.caption, reading.style);
    }
    paintBar(painter, input, layout, table);
    for (const Label& label : placeLabels(input, layout, measure)) {
        if (label.drawn) {
            paintText(painter, QPoint(label.x, label.baseline), label.text, reading.style);
        }
    }
}

}  // namespace lys::legend
