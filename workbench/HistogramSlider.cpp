#include <workbench/HistogramSlider.h>

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr std::size_t BARS = 128;
/** Samples looked at, at most: the picture's shape needs no more. */
constexpr std::size_t SAMPLES = 1 << 20;
constexpr double MARGIN = 6.0;
constexpr double REACH = 6.0;

std::vector<double> histogram(const LyrVolume& volume, double low, double high) {
    std::vector<double> bars(BARS, 0.0);
    const std::size_t step = std::max<std::size_t>(volume.samples().size() / SAMPLES, 1);
    for (std::size_t i = 0; i < volume.samples().size(); i += step) {
        const double v = static_cast<double>(volume.samples()[i]);
        if (std::isfinite(v)) {
            const double bar = (v - low) / (high - low) * static_cast<double>(BARS);
            bars[std::min(static_cast<std::size_t>(std::max(bar, 0.0)), BARS - 1)] += 1.0;
        }
    }
    // Air and material dwarf everything between them: logarithms show both.
    const double most = std::log1p(*std::max_element(bars.begin(), bars.end()));
    for (double& bar : bars) {
        bar = most > 0.0 ? std::log1p(bar) / most : 0.0;
    }
    return bars;
}

}  // namespace

HistogramSlider::HistogramSlider(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void HistogramSlider::setVolume(const LyrVolume* volume) {
    mBars.clear();
    mRangeLow = 0.0;
    mRangeHigh = 1.0;
    if (volume && !volume->valueRange().isEmpty()) {
        mRangeLow = volume->valueRange().low;
        mRangeHigh = volume->valueRange().high;
        if (mRangeHigh <= mRangeLow) {
            mRangeLow -= 0.5;
            mRangeHigh += 0.5;
        }
        mBars = histogram(*volume, mRangeLow, mRangeHigh);
    }
    setEnabled(volume != nullptr);
    update();
}

void HistogramSlider::setWindow(double low, double high) {
    mLow = low;
    mHigh = high;
    update();
}

QSize HistogramSlider::sizeHint() const {
    return {200, fontMetrics().height() * 5};
}

QSize HistogramSlider::minimumSizeHint() const {
    return {100, fontMetrics().height() * 5};
}

QRectF HistogramSlider::plot() const {
    return QRectF(rect()).adjusted(MARGIN, 2.0, -MARGIN, -10.0);
}

double HistogramSlider::toX(double value) const {
    const QRectF area = plot();
    const double part = std::clamp((value - mRangeLow) / (mRangeHigh - mRangeLow), 0.0, 1.0);
    return area.left() + part * area.width();
}

double HistogramSlider::toValue(double x) const {
    const QRectF area = plot();
    const double part = std::clamp((x - area.left()) / std::max(area.width(), 1.0), 0.0, 1.0);
    return mRangeLow + part * (mRangeHigh - mRangeLow);
}

HistogramSlider::Grip HistogramSlider::gripAt(double x) const {
    const double low = std::fabs(x - toX(mLow));
    const double high = std::fabs(x - toX(mHigh));
    if (std::min(low, high) <= REACH) {
        return low < high ? Grip::Low : Grip::High;
    }
    return x > toX(mLow) && x < toX(mHigh) ? Grip::Middle : Grip::None;
}

void HistogramSlider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area = plot();
    painter.fillRect(area, palette().color(QPalette::Base));
    QPainterPath shape;
    shape.moveTo(area.bottomLeft());
    const double width = area.width() / static_cast<double>(BARS);
    for (std::size_t i = 0; i < mBars.size(); ++i) {
        const double top = area.bottom() - mBars[i] * (area.height() - 2.0);
        shape.lineTo(area.left() + width * static_cast<double>(i), top);
        shape.lineTo(area.left() + width * static_cast<double>(i + 1), top);
    }
    shape.lineTo(area.bottomRight());
    shape.closeSubpath();
    QColor muted = palette().color(QPalette::Text);
    muted.setAlphaF(0.35f);
    if (!mBars.empty()) {
        painter.fillPath(shape, muted);
    }
    // From black to white inside of the window, as the views show it.
    const QRectF window(QPointF(toX(mLow), area.top()), QPointF(toX(mHigh), area.bottom()));
    if (!mBars.empty()) {
        QLinearGradient greys(window.topLeft(), window.topRight());
        greys.setColorAt(0.0, QColor(0, 0, 0, 200));
        greys.setColorAt(1.0, QColor(255, 255, 255, 200));
        painter.save();
        painter.setClipPath(shape);
        painter.fillRect(window, greys);
        painter.restore();
    }
    for (const Grip grip : {Grip::Low, Grip::High}) {
        const double x = toX(grip == Grip::Low ? mLow : mHigh);
        const bool hot = isEnabled() && (grip == mHot || grip == mGrip);
        const QColor color = palette().color(hot ? QPalette::Highlight : QPalette::Text);
        painter.setPen(QPen(color, hot ? 2.0 : 1.2));
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawPolygon(QPolygonF(
            {QPointF(x, area.bottom()), QPointF(x - 5.0, area.bottom() + 8.0), QPointF(x + 5.0, area.bottom() + 8.0)}));
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area);
}

void HistogramSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !mBars.empty()) {
        mGrip = gripAt(event->position().x());
        mPressedAt = toValue(event->position().x()) - mLow;
        update();
    }
}

void HistogramSlider::mouseMoveEvent(QMouseEvent* event) {
    const double value = toValue(event->position().x());
    // The ends never meet: a window without extent would be a division by zero.
    const double least = (mRangeHigh - mRangeLow) * 1e-3;
    double low = mLow;
    double high = mHigh;
    switch (mGrip) {
        case Grip::None:
            mHot = gripAt(event->position().x());
            setCursor(mHot == Grip::None ? Qt::ArrowCursor
                                         : (mHot == Grip::Middle ? Qt::SizeAllCursor : Qt::SplitHCursor));
            update();
            return;
        case Grip::Low:
            low = std::min(value, mHigh - least);
            break;
        case Grip::High:
            high = std::max(value, mLow + least);
            break;
        case Grip::Middle:
            low = value - mPressedAt;
            high = low + mHigh - mLow;
            break;
    }
    setWindow(low, high);
    Q_EMIT windowDragged(low, high);
}

void HistogramSlider::mouseReleaseEvent(QMouseEvent*) {
    mGrip = Grip::None;
    update();
}

void HistogramSlider::leaveEvent(QEvent*) {
    mHot = Grip::None;
    update();
}

}  // namespace workbench
