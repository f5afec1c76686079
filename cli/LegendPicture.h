#pragma once

#include <colortable/legend/LegendPicture.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqUnitConverter.h>

#include <QByteArray>

#include <string>

namespace lys::cli {

/** A legend that is laid out, to be described or painted. */
class LegendPicture {
public:
    LegendPicture(const LyrObjectPtr& table, const LyrObjectPtr& settings, const QSize& size, float dotsPerInch);

    /** The layout as JSON: rectangles, labels and size hints. */
    std::string toJson() const;

    /** The picture on opaque white in the format that a file name's ending names (.png, .svg, .pdf). Throws Failure:
     * Unusable for another ending, Failed when it cannot be made. */
    QByteArray encode(const std::string& path) const;

private:
    void paint(QPainter& painter) const;
    QByteArray encodePng() const;
    QByteArray encodeSvg() const;
    QByteArray encodePdf() const;

    LyrObjectPtr mTable;
    LyqUnitConverter mConverter;
    lys::legend::Reading mReading;
    lys::legend::TextMeasure mMeasure;
    lys::legend::Layout mLayout;
};

}  // namespace lys::cli
