#include <workbench/Icons.h>

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

namespace workbench {

namespace {

/** An arc with an arrow at its left end; mirrored, at its right end. */
class ArrowEngine : public QIconEngine {
public:
    explicit ArrowEngine(bool mirrored) : mMirrored(mirrored) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette::ColorGroup group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor color = QGuiApplication::palette().color(group, QPalette::ButtonText);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.center() + QPointF(0.5, 0.5));
        const double unit = qMin(rect.width(), rect.height()) / 16.0;
        painter->scale(mMirrored ? -unit : unit, unit);
        QPainterPath arc;
        arc.moveTo(-4.0, -2.5);
        arc.lineTo(2.0, -2.5);
        arc.arcTo(QRectF(-1.0, -2.5, 6.0, 7.0), 90.0, -180.0);
        arc.lineTo(-3.0, 4.5);
        painter->setPen(QPen(color, 1.6, Qt::SolidLine, Qt::FlatCap));
        painter->drawPath(arc);
        painter->setPen(Qt::NoPen);
        painter->setBrush(color);
        painter->drawPolygon(QPolygonF({{-7.0, -2.5}, {-3.0, -6.0}, {-3.0, 1.0}}));
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new ArrowEngine(mMirrored); }

private:
    bool mMirrored;
};

}  // namespace

QIcon undoIcon() {
    return QIcon(new ArrowEngine(false));
}

QIcon redoIcon() {
    return QIcon(new ArrowEngine(true));
}

}  // namespace workbench
