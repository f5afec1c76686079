#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyqUnitConverter.h>
#include <workbench/ReadoutBar.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace workbench {

namespace {

QColor toColor(const LyrRGBA<float>& color) {
    const auto channel = [](float c) { return c > 0.0f ? std::min(static_cast<int>(c * 255.0f), 255) : 0; };
    return {channel(color.red), channel(color.green), channel(color.blue), channel(color.alpha)};
}

/** The colour over light and dark squares, so that transparency shows. */
QPixmap swatch(const QColor& color, int size, const QColor& frame) {
    QPixmap picture(size * 2, size);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.fillRect(size, 0, size, size, Qt::black);
    painter.fillRect(picture.rect(), color);
    painter.setPen(frame);
    painter.drawRect(picture.rect().adjusted(0, 0, -1, -1));
    return picture;
}

}  // namespace

ReadoutBar::ReadoutBar(QWidget* parent)
    : QWidget(parent), mPosition(new QLabel(this)), mValue(new QLabel(this)), mSwatch(new QLabel(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 0, 4, 0);
    layout->setSpacing(8);
    layout->addWidget(mPosition);
    layout->addWidget(mSwatch);
    layout->addWidget(mValue);
    mPosition->setObjectName("readoutPosition");
    mValue->setObjectName("readoutValue");
    mSwatch->setObjectName("readoutSwatch");
}

void ReadoutBar::show(const LyrVector3<float>& position) {
    const LyqUnitConverter lengths(Lyr::Length);
    const auto part = [&](double v) { return QLocale().toString(lengths.internalToDisplay(v), 'f', 2); };
    // As reports and lists tell positions.
    const auto* opened = dynamic_cast<const LyrVolumeObject*>(LyqSession::instance().document());
    const LyrVolume::Vector told =
        opened ? opened->volumePosition(position) : LyrVolume::Vector{position.x, position.y, position.z};
    mPosition->setText(
        tr("x %1  y %2  z %3 %4").arg(part(told[0]), part(told[1]), part(told[2]), lengths.getDisplayUnitAbbr()));
    const std::vector<LyqLayer*> layers = LyqSession::instance().layers();
    for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer) {
        LyqLayer::Readout readout;
        if ((*layer)->isRendering() && (*layer)->readout(position, readout)) {
            mColor = readout.hasColor ? toColor(readout.color) : QColor();
            mValue->setText(tr("%1: %2").arg((*layer)->title(), readout.text));
            const int size = fontMetrics().height();
            mSwatch->setPixmap(mColor.isValid() ? swatch(mColor, size, palette().color(QPalette::Mid)) : QPixmap());
            return;
        }
    }
    mColor = QColor();
    mValue->clear();
    mSwatch->clear();
}

void ReadoutBar::clear() {
    mPosition->clear();
    mValue->clear();
    mSwatch->clear();
    mColor = QColor();
}

QString ReadoutBar::text() const {
    return mPosition->text() + "  " + mValue->text();
}

}  // namespace workbench
