#pragma once

#include <toolkit/QTableItem.h>

#include <QPixmap>

/** A cell that a picture fills. */
class PixmapTableItem : public QTableItem {
public:
    static constexpr int RTTI = 72618;

    int rtti() const override { return RTTI; }
    bool paint(QPainter& painter, const QPalette& palette, const QRect& cell, bool selected) override;

    const QPixmap& pixmap() const { return mPixmap; }
    void setPixmap(const QPixmap& pixmap) { mPixmap = pixmap; }

private:
    QPixmap mPixmap;
};
