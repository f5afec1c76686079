#include <lys_core/LyqPainter.h>

#include <QPixmap>
#include <QWidget>

LyqPainter::LyqPainter(QWidget* widget) : QPainter(widget) {
    setFont(widget->font());
    setPen(widget->palette().color(widget->foregroundRole()));
}

LyqPainter::LyqPainter(QPaintDevice* device) : QPainter(device) {}

void LyqPainter::drawStretched(const QRect& rect, const QPixmap& pixmap) {
    const bool smooth = testRenderHint(SmoothPixmapTransform);
    setRenderHint(SmoothPixmapTransform, false);
    drawPixmap(rect, pixmap);
    setRenderHint(SmoothPixmapTransform, smooth);
}
