#include <colortable/editor/PixmapTableItem_p.h>

#include <QPainter>

bool PixmapTableItem::paint(QPainter& painter, const QPalette&, const QRect& cell, bool) {
    // Unsmoothed: the halves over white and black stay apart.
    painter.drawPixmap(cell, mPixmap);
    return true;
}
