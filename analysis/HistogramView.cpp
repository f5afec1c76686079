#include <analysis/HistogramView.h>
#include <analysis/compute/LyrSortedValues.h>

#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace {

/** Around the bars, pixels: for the frame. */
constexpr int MARGIN = 1;

}  // namespace

HistogramView::HistogramView(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

HistogramView::~HistogramView() = default;

void HistogramView::setValues(std::shared_ptr<const LyrSortedValues> values, const QString& message) {
    mValues = std::move(values);
    mMessage = message;
    layOut();
}

void HistogramView::setTable(std::vector<float> boundaries, Coloring coloring) {
    mBoundaries = std::move(boundaries);
    mColoring = std::move(coloring);
    layOut();
}

QSize HistogramView::sizeHint() const {
    return {200, 5 * fontMetrics().height()};
}

QSize HistogramView::minimumSizeHint() const {
    return {80, sizeHint().height()};
}

void HistogramView::layOut() {
    const QSize inside = size() - QSize(2 * MARGIN, 2 * MARGIN);
    mLayout = mValues ? HistogramLayout::make(*mValues, mBoundaries, inside) : HistogramLayout();
    mColors.assign(mLayout.bars.size(), QColor());
    for (std::size_t i = 0; mColoring && i < mColors.size(); ++i) {
        mColors[i] = mColoring(mLayout.valueAt(static_cast<int>(i)));
    }
    update();
}

void HistogramView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const QColor ink = palette().color(QPalette::Text);
    if (mLayout.isEmpty()) {
        painter.setPen(ink);
        painter.drawText(rect().adjusted(4, 4, -4, -4), Qt::AlignCenter | Qt::TextWordWrap, mMessage);
        return;
    }
    const int bottom = MARGIN + mLayout.size.height();
    for (std::size_t i = 0; i < mLayout.bars.size(); ++i) {
        const int x = MARGIN + static_cast<int>(i);
        const int top = bottom - mLayout.bars[i];
        if (mLayout.bars[i] > 0) {
            painter.fillRect(x, top, 1, mLayout.bars[i], mColors[i].isValid() ? mColors[i] : QColor(Qt::gray));
            // Colours of a table may be that of the background.
            painter.fillRect(x, top, 1, 1, ink);
        }
    }
    for (const int line : mLayout.lines) {
        // Light beside dark: seen on every colour.
        painter.fillRect(MARGIN + line, MARGIN, 1, mLayout.size.height(), Qt::black);
        painter.fillRect(MARGIN + line + 1, MARGIN, 1, mLayout.size.height(), Qt::white);
    }
}

void HistogramView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layOut();
}

void HistogramView::mouseMoveEvent(QMouseEvent* event) {
    QWidget::mouseMoveEvent(event);
    int section = -1;
    if (!mLayout.isEmpty() && !mBoundaries.empty()) {
        const float value = mLayout.valueAt(event->position().toPoint().x() - MARGIN);
        section = static_cast<int>(LyrSectionShares::sectionOf(value, mBoundaries));
    }
    Q_EMIT sectionHovered(section);
}

void HistogramView::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    Q_EMIT sectionHovered(-1);
}
