#include <lys_core/LyqColorWidget.h>

#include <QColorDialog>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionFocusRect>

#include <algorithm>
#include <bit>
#include <cstdint>

namespace {

/** 1 / 255 as colours are stored: all 256 values survive a round trip. */
constexpr float CHANNEL_STEP = 0.003921569f;

/** Truncated in single precision; the comparison with 0 is false for a NaN. */
int toByte(float channel) {
    const float scaled = channel * 255.0f;
    return scaled > 0.0f ? static_cast<int>(std::min(scaled, 255.0f)) : 0;
}

bool isSame(const LyrRGBAf& a, const LyrRGBAf& b) {
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    return bits(a.red) == bits(b.red) && bits(a.green) == bits(b.green) && bits(a.blue) == bits(b.blue) &&
           bits(a.alpha) == bits(b.alpha);
}

}  // namespace

LyqColorWidget::LyqColorWidget(QWidget* parent, const char* name) : QAbstractButton(parent) {
    setObjectName(QString::fromUtf8(name));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &LyqColorWidget::choose);
}

LyqColorWidget::~LyqColorWidget() = default;

QColor LyqColorWidget::toQColor(const LyrRGBAf& color) {
    return {toByte(color.red), toByte(color.green), toByte(color.blue), toByte(color.alpha)};
}

LyrRGBAf LyqColorWidget::fromQColor(const QColor& color) {
    const auto channel = [](int byte) { return static_cast<float>(byte) * CHANNEL_STEP; };
    return {channel(color.red()), channel(color.green()), channel(color.blue()), channel(color.alpha())};
}

void LyqColorWidget::setRgba(const LyrRGBAf& color) {
    if (!isSame(color, mColor)) {
        mColor = color;
        update();
    }
}

/** The user's choice: shown and told. */
void LyqColorWidget::take(const LyrRGBAf& color) {
    if (!isSame(color, mColor)) {
        setRgba(color);
        Q_EMIT rgbaChanged(color);
    }
}

void LyqColorWidget::choose() {
    if (mDialog) {
        return;
    }
    const LyrRGBAf first = mColor;
    const QColor shown = toQColor(first);
    // On the heap: this widget may go while the dialog is open, and takes it along.
    const QPointer<LyqColorWidget> self = this;
    const QPointer<QColorDialog> dialog = new QColorDialog(shown, this);
    mDialog = dialog;
    dialog->setOption(QColorDialog::ShowAlphaChannel);
    // The dialog knows 8 bits a channel: the colour it began with stands for the exact one.
    connect(dialog, &QColorDialog::currentColorChanged, this, [this, first, shown](const QColor& color) {
        take(color.rgba() == shown.rgba() ? first : fromQColor(color));
    });
    Q_EMIT choosingStarted();
    const bool accepted = dialog->exec() == QDialog::Accepted;
    if (self && (!accepted || !dialog)) {
        setRgba(first);
        Q_EMIT choosingCancelled();
    }
    if (self) {
        Q_EMIT choosingFinished();
    }
    delete dialog;
}

QSize LyqColorWidget::sizeHint() const {
    const int height = fontMetrics().height() + 6;
    return {3 * height, height};
}

QSize LyqColorWidget::minimumSizeHint() const {
    return {fontMetrics().height() * 2, fontMetrics().height()};
}

void LyqColorWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOptionButton button;
    button.initFrom(this);
    button.state |= isDown() ? QStyle::State_Sunken : QStyle::State_Raised;
    style()->drawControl(QStyle::CE_PushButtonBevel, &button, &painter, this);
    // Below the swatch: styles tint what has the focus.
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }

    const QRect swatch = rect().adjusted(4, 4, -4, -4);
    const QRect left(swatch.topLeft(), QSize(swatch.width() / 2, swatch.height()));
    painter.fillRect(swatch, Qt::black);
    painter.fillRect(left, Qt::white);
    painter.fillRect(swatch, isEnabled() ? toQColor(mColor) : palette().color(QPalette::Disabled, QPalette::Button));
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawRect(swatch.adjusted(0, 0, -1, -1));
}
