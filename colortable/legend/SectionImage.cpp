#include <colortable/legend/SectionImage.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <QColor>
#include <QPainter>

namespace lys::legend {

namespace {

using Section = LyrColorLookupTable::Section;

/** Truncated, as the legend's colours are defined; the bounds only keep a colour outside [0, 1] in its byte. */
int toByte(float channel) {
    const float scaled = channel * 255.0f;
    return scaled >= 255.0f ? 255 : scaled > 0.0f ? static_cast<int>(scaled) : 0;
}

float channelOverWhite(float channel, float alpha) {
    return channel * alpha + 1.0f - alpha;
}

/** A rectangle of one colour in a picture of a section. */
struct Patch {
    QRect rect;
    QRgb color;
};

struct Split {
    QRect white;
    QRect black;
};

/** The two halves of the lines `from` to `to` (indices along the axis) of a picture. An odd line goes to the half over
 * black. */
Split splitLines(const QRect& rect, Halves halves, int from, int to) {
    const int count = to - from + 1;
    if (halves == Halves::LeftOverWhite) {
        const int white = rect.width() / 2;
        const int top = rect.bottom() - to;
        return {QRect(rect.left(), top, white, count), QRect(rect.left() + white, top, rect.width() - white, count)};
    }
    const int white = rect.height() / 2;
    const int left = rect.left() + from;
    const bool upper = halves == Halves::UpperOverWhite;
    const int whiteTop = upper ? rect.top() : rect.bottom() - white + 1;
    const int blackTop = upper ? rect.top() + white : rect.top();
    return {QRect(left, whiteTop, count, white), QRect(left, blackTop, count, rect.height() - white)};
}

/** The picture as patches: neighbouring lines of the same colours are one. The colours are those of the lines from
 * `first` on. */
std::vector<Patch> makePatches(const QRect& rect, Halves halves, const std::vector<LyrRGBA<float>>& colors,
                               int first = 0) {
    std::vector<Patch> patches;
    const int length = static_cast<int>(colors.size());
    for (int from = 0; from < length;) {
        const QRgb white = overWhite(colors[static_cast<std::size_t>(from)]);
        const QRgb black = overBlack(colors[static_cast<std::size_t>(from)]);
        int to = from;
        while (to + 1 < length && overWhite(colors[static_cast<std::size_t>(to) + 1]) == white &&
               overBlack(colors[static_cast<std::size_t>(to) + 1]) == black) {
            ++to;
        }
        const Split split = splitLines(rect, halves, first + from, first + to);
        patches.push_back({split.white, white});
        patches.push_back({split.black, black});
        from = to + 1;
    }
    return patches;
}

int lengthOf(const QSize& size, Halves halves) {
    return halves == Halves::LeftOverWhite ? size.height() : size.width();
}

/** The colours of some lines of a picture with `length` of them. */
std::vector<LyrRGBA<float>> sampleLines(int length, const Lines& lines, const Section& section, const Section* previous,
                                        const Section* next) {
    std::vector<LyrRGBA<float>> colors(static_cast<std::size_t>(std::max(lines.last - lines.first + 1, 0)),
                                       LyrRGBA<float>(0.0f, 0.0f, 0.0f, 0.0f));
    const LyrValuePair<float> range{0.0f, static_cast<float>(length - 1)};
    for (std::size_t i = 0; i < colors.size(); ++i) {
        section.getColor(range, static_cast<float>(lines.first + static_cast<int>(i)), colors[i], previous, next);
    }
    return colors;
}

/** Does what takes memory. False, and an error, where there is none: nothing that is thrown leaves the library. */
template <class Work>
bool reportScarceMemory(const Section& section, Work work) noexcept {
    try {
        work();
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(&section, Lyr::AllocationFailed));
        return false;
    }
}

/** What of a painter's coordinates its device shows; everything for a device without a size of its own. */
QRect shownBy(const QPainter& painter, const QRect& everything) {
    const QRect window = painter.window();
    return window.isEmpty() ? everything : painter.worldTransform().inverted().mapRect(QRectF(window)).toAlignedRect();
}

}  // namespace

QRgb overWhite(const LyrRGBA<float>& color) {
    return qRgb(toByte(channelOverWhite(color.red, color.alpha)), toByte(channelOverWhite(color.green, color.alpha)),
                toByte(channelOverWhite(color.blue, color.alpha)));
}

QRgb overBlack(const LyrRGBA<float>& color) {
    return qRgb(toByte(color.red * color.alpha), toByte(color.green * color.alpha), toByte(color.blue * color.alpha));
}

QRgb opaque(const LyrRGBA<float>& color) {
    return qRgb(toByte(color.red), toByte(color.green), toByte(color.blue));
}

std::vector<LyrRGBA<float>> sampleSection(int length, const Section& section, const Section* previous,
                                          const Section* next) {
    std::vector<LyrRGBA<float>> colors;
    reportScarceMemory(section, [&] { colors = sampleLines(length, {0, length - 1}, section, previous, next); });
    return colors;
}

Lines linesInside(const QRect& picture, Halves halves, const QRect& area) {
    const QRect inside = picture.intersected(area);
    if (inside.isEmpty()) {
        return {0, -1};
    }
    return halves == Halves::LeftOverWhite ? Lines{picture.bottom() - inside.bottom(), picture.bottom() - inside.top()}
                                           : Lines{inside.left() - picture.left(), inside.right() - picture.left()};
}

QImage sectionImage(const QSize& size, Halves halves, const Section& section, const Section* previous,
                    const Section* next) {
    if (size.isEmpty()) {
        return {};
    }
    QImage image;
    std::vector<Patch> patches;
    const bool done = reportScarceMemory(section, [&] {
        image = QImage(size, QImage::Format_RGB32);
        const int length = image.isNull() ? 0 : lengthOf(size, halves);  // no colours for a picture that is too large
        const auto colors = sampleLines(length, {0, length - 1}, section, previous, next);
        patches = makePatches(image.rect(), halves, colors);
    });
    if (!done || image.isNull()) {
        return {};
    }
    for (const Patch& patch : patches) {
        for (int y = patch.rect.top(); y <= patch.rect.bottom(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
            std::fill(line + patch.rect.left(), line + patch.rect.right() + 1, patch.color);
        }
    }
    return image;
}

void paintSection(QPainter& painter, const QRect& rect, Halves halves, const Section& section, const Section* previous,
                  const Section* next) {
    if (rect.isEmpty()) {
        return;
    }
    const Lines lines = linesInside(rect, halves, shownBy(painter, rect));
    std::vector<Patch> patches;
    reportScarceMemory(section, [&] {
        const auto colors = sampleLines(lengthOf(rect.size(), halves), lines, section, previous, next);
        patches = makePatches(rect, halves, colors, lines.first);
    });
    for (const Patch& patch : patches) {
        if (!patch.rect.isEmpty()) {
            painter.fillRect(patch.rect, QColor(patch.color));
        }
    }
}

}  // namespace lys::legend
