#pragma once

#include <lys_core/LysCoreExport.h>

#include <QPainter>

class QWidget;

/** A painter that draws as the application's own widgets do. */
class LYS_CORE_EXPORT LyqPainter : public QPainter {
public:
    /** Draws on a widget, in its font and its text colour. Use it in paintEvent() only. */
    explicit LyqPainter(QWidget* widget);
    /** Draws on anything else. */
    explicit LyqPainter(QPaintDevice* device);

    /** Fills a rectangle with a picture, its pixels drawn as sharp boxes however far they are stretched. */
    void drawStretched(const QRect& rect, const QPixmap& pixmap);
};
