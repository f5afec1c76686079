#include "LegendPicture.h"

#include "Failure.h"
#include "JsonText.h"

#include <lyr_core/LyrHostIdentifiers.h>
#include <lys_core/LyqScaling.h>

#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <array>
#include <cmath>
#include <functional>

namespace lys::cli {

namespace {

std::array<std::int64_t, 4> numbersOf(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

std::array<std::int64_t, 2> numbersOf(const QSize& size) {
    return {size.width(), size.height()};
}

[[noreturn]] void throwUnpaintable() {
    throwFailed("the picture could not be made; there is not enough memory");
}

}  // namespace

LegendPicture::LegendPicture(const LyrObjectPtr& table, const LyrObjectPtr& settings, const QSize& size,
                             float dotsPerInch)
    : mTable(table),
      mConverter(Lyr::Length),
      mReading(lys::legend::read(table.get(), settings.get(), mConverter, size, dotsPerInch)),
      mMeasure(lys::legend::measureOf(mReading.style, table.get(), mConverter)),
      mLayout(lys::legend::layOut(mReading.input, mMeasure)) {}

std::string LegendPicture::toJson() const {
    const lys::legend::Input& input = mReading.input;
    const bool drawable = lys::legend::isDrawable(mTable.get());
    JsonText json;
    json.begin('{');
    json.add("horizontal", input.horizontal);
    json.begin('{', "caption");
    json.add("text", input.caption.toStdString());
    json.addNumbers("rect", numbersOf(mLayout.caption));
    json.end();
    json.addNumbers("bar", numbersOf(mLayout.bar));
    json.addNumbers("labelArea", numbersOf(mLayout.labels));
    json.begin('{', "extensions");
    json.add("lower", input.lowerExtension);
    json.add("upper", input.upperExtension);
    json.add("length", std::int64_t(mLayout.extensionLength));
    json.end();
    json.begin('[', "sections");
    for (const lys::legend::Box& box : drawable ? innerBoxes(input, mLayout) : std::vector<lys::legend::Box>()) {
        json.begin('{');
        json.add("index", std::int64_t(box.section));
        json.addNumbers("rect", numbersOf(box.rect));
        json.end();
    }
    json.end();
    json.begin('[', "labels");
    for (const lys::legend::Label& label : placeLabels(input, mLayout, mMeasure)) {
        json.begin('{');
        json.add("value", label.value);
        json.add("text", label.text.toStdString());
        json.add("x", std::int64_t(label.x));
        json.add("baseline", std::int64_t(label.baseline));
        json.add("drawn", label.drawn);
        json.end();
    }
    json.end();
    json.addNumbers("sizeHint", numbersOf(mLayout.sizeHint));
    json.addNumbers("minimumSizeHint", numbersOf(mLayout.minimumSizeHint));
    json.end();
    return json.text();
}

void LegendPicture::paint(QPainter& painter) const {
    painter.fillRect(QRect(QPoint(0, 0), mReading.input.size), Qt::white);
    lys::legend::paint(painter, mReading, mLayout, mMeasure, mTable.get());
}

QByteArray LegendPicture::encode(const std::string& path) const {
    if (path.ends_with(".png")) {
        return encodePng();
    }
    if (path.ends_with(".svg")) {
        return encodeSvg();
    }
    if (path.ends_with(".pdf")) {
        return encodePdf();
    }
    throwUnusable(path + ": the picture's format is not known; let the name end in .png, .svg or .pdf");
}

QByteArray LegendPicture::encodePng() const {
    QImage image(mReading.input.size, QImage::Format_RGB32);
    if (image.isNull()) {
        throwUnpaintable();
    }
    QPainter painter(&image);
    paint(painter);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!image.save(&buffer, "PNG")) {
        throwUnpaintable();
    }
    return bytes;
}

QByteArray LegendPicture::encodeSvg() const {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(mReading.input.size);
    generator.setViewBox(QRect(QPoint(0, 0), mReading.input.size));
    generator.setResolution(static_cast<int>(LyqScaling::DEFAULT_DOTS_PER_INCH));
    generator.setTitle(mReading.input.caption);
    QPainter painter(&generator);
    paint(painter);
    if (!painter.end()) {
        throwUnpaintable();
    }
    return bytes;
}

// One unit of the page is one pixel of the picture, so that the same layout fits.
QByteArray LegendPicture::encodePdf() const {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    const auto resolution = static_cast<double>(LyqScaling::effectiveDotsPerInch(mReading.input.dotsPerInch));
    const QSizeF points = QSizeF(mReading.input.size) * 72.0 / resolution;
    writer.setResolution(static_cast<int>(std::lround(resolution)));
    writer.setPageSize(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(mReading.input.caption);
    QPainter painter(&writer);
    painter.setWindow(QRect(QPoint(0, 0), mReading.input.size));
    paint(painter);
    if (!painter.end()) {
        throwUnpaintable();
    }
    return bytes;
}

}  // namespace lys::cli
