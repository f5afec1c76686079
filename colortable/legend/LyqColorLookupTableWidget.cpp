#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LegendPicture.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/legend/SectionImage.h>
#include <colortable/model/LyrColorLookupTableSection.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrSameValue.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqScaling.h>
#include <lys_core/LyqUnitConverter.h>
#include <lys_core/LyrApplicationObject.h>

#include <QEvent>
#include <QPainter>
#include <QPen>
#include <QPixmap>

namespace {

using Section = LyrColorLookupTable::Section;

const Section* asSection(const LyrObject* object) {
    return object && object->getMetaClass().isOfType(Section::metaClass()) ? static_cast<const Section*>(object)
                                                                           : nullptr;
}

bool isLater(const LyrObject* object, LyrTimestamp time) {
    return object && object->getModificationTimestamp() > time;
}

bool isAnySectionLater(const LyrObject* table, LyrTimestamp time) {
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> sections(table, Lyr::SectionList);
    if (!sections) {
        return false;
    }
    const long long count = sections->getArraySize();
    const LyrObjectLink* links = sections->lockArrayPtr();
    bool later = false;
    for (long long i = 0; i < count && !later; ++i) {
        later = isLater(links[i].getLink(), time);
    }
    sections->unlockArrayPtr(links);
    return later;
}

}  // namespace

struct LyqColorLookupTableWidget::Private {
    explicit Private(LyrIOC* listener)
        : unitSource(listener, &LyqApplication::instance().displayUnits()),
          colorTable(listener),
          renderSettings(listener) {}

    LyrObjectIOCPtr unitSource;
    LyrObjectIOCPtr colorTable;
    LyrObjectIOCPtr renderSettings;
    float dotsPerInch = 0.0f;
    LyrTimestamp lastUpdate;  ///< null: out of date
    bool lastEnabled = true;
    QPixmap pixmap;
    LyqUnitConverter converter{Lyr::Length};
    lys::legend::Reading reading;
    lys::legend::Layout layout;
};

LyqColorLookupTableWidget::LyqColorLookupTableWidget(QWidget* parent, const char* name)
    : QFrame(parent), d(new Private(this)) {
    setObjectName(QString::fromUtf8(name));
    // Every pixel is painted by the pixmap: no erasing before, and no full repaint while it is resized.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_StaticContents);
    setMouseTracking(true);
    connect(&d->converter, &LyqUnitConverter::displayUnitChanged, this, &LyqColorLookupTableWidget::unitChangedSlot);
}

LyqColorLookupTableWidget::~LyqColorLookupTableWidget() = default;

void LyqColorLookupTableWidget::setColorTable(LyrObject* table) {
    if (!(d->colorTable == table)) {
        d->colorTable = table;
        invalidate();
    }
}

void LyqColorLookupTableWidget::setRenderSettings(LyrObject* settings) {
    if (!(d->renderSettings == settings)) {
        d->renderSettings = settings;
        invalidate();
    }
}

void LyqColorLookupTableWidget::setDotsPerInch(float dotsPerInch) {
    if (!lyrSameValue(dotsPerInch, d->dotsPerInch)) {
        d->dotsPerInch = dotsPerInch;
        invalidate();
    }
}

float LyqColorLookupTableWidget::getDotsPerInch() const {
    return d->dotsPerInch;
}

void LyqColorLookupTableWidget::stamp() {
    d->lastUpdate = LyrTimestamp();
}

void LyqColorLookupTableWidget::invalidate() {
    stamp();
    update();
}

bool LyqColorLookupTableWidget::needsUpdate() const {
    return d->lastUpdate.isNull() || isEnabled() != d->lastEnabled || isLater(d->colorTable.get(), d->lastUpdate) ||
           isLater(d->renderSettings.get(), d->lastUpdate) || isAnySectionLater(d->colorTable.get(), d->lastUpdate);
}

QSize LyqColorLookupTableWidget::sizeHint() const {
    updateData();
    return d->layout.sizeHint;
}

QSize LyqColorLookupTableWidget::minimumSizeHint() const {
    updateData();
    return d->layout.minimumSizeHint;
}

void LyqColorLookupTableWidget::updateData() const {
    d->reading = lys::legend::read(d->colorTable.get(), d->renderSettings.get(), d->converter, size(), d->dotsPerInch);
    d->reading.style.keyed = isKeyed();
    d->layout = lys::legend::layOut(d->reading.input,
                                    lys::legend::measureOf(d->reading.style, d->colorTable.get(), d->converter));
}

void LyqColorLookupTableWidget::updateIfNeeded() const {
    if (needsUpdate()) {
        updateData();
    }
}

void LyqColorLookupTableWidget::sync() {
    const QSize wanted = size() * devicePixelRatioF();
    if (needsUpdate() || d->pixmap.size() != wanted) {
        doSync();
        if (!isEnabled()) {
            d->pixmap.fill(palette().color(backgroundRole()));
        }
    }
    d->lastUpdate = LyrTimestamp::getCurrentTimestamp();
    d->lastEnabled = isEnabled();
}

void LyqColorLookupTableWidget::doSync() {
    updateData();
    d->pixmap = QPixmap(size() * devicePixelRatioF());
    d->pixmap.setDevicePixelRatio(devicePixelRatioF());
    if (d->pixmap.isNull()) {
        return;
    }
    d->pixmap.fill(palette().color(backgroundRole()));
    const LyrObject* table = d->colorTable.get();
    if (!table) {
        return;
    }
    if (!table->getMetaClass().isOfType(LyrColorLookupTable::metaClass())) {
        LyrError::emitError(LyrError::Message(table, Lyr::WrongType));
        return;
    }
    QPainter painter(&d->pixmap);
    lys::legend::paint(painter, d->reading, d->layout, lys::legend::measureOf(d->reading.style, table, d->converter),
                       table);
}

void LyqColorLookupTableWidget::paintEvent(QPaintEvent*) {
    sync();
    QPainter(this).drawPixmap(0, 0, d->pixmap);
}

void LyqColorLookupTableWidget::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    invalidate();
}

void LyqColorLookupTableWidget::changeEvent(QEvent* event) {
    QFrame::changeEvent(event);
    switch (event->type()) {
        case QEvent::PaletteChange:
        case QEvent::FontChange:
        case QEvent::StyleChange:
        case QEvent::LocaleChange:
        case QEvent::LanguageChange:
            invalidate();
            break;
        case QEvent::EnabledChange:
            update();
            break;
        default:
            break;
    }
}

bool LyqColorLookupTableWidget::iocCallback(Message& message) {
    if (message.getInitialSender() == d->unitSource.get() && message.getPropertyID() == Lyr::DisplayUnitList) {
        stamp();
    }
    update();
    return LyrIOC::iocCallback(message);
}

void LyqColorLookupTableWidget::unitChangedSlot() {
    invalidate();
}

void LyqColorLookupTableWidget::renderText(QPainter& painter, int x, int y, const QString& text, bool outline,
                                           const QPen& textPen, const QPen& outlinePen) {
    lys::legend::paintText(painter, QPoint(x, y), text, textStyle(painter, outline, textPen, outlinePen));
}

void LyqColorLookupTableWidget::renderText(QPainter& painter, const QRect& rect, int flags, const QString& text,
                                           bool outline, const QPen& textPen, const QPen& outlinePen) {
    lys::legend::paintText(painter, rect, flags, text, textStyle(painter, outline, textPen, outlinePen));
}

lys::legend::Style LyqColorLookupTableWidget::textStyle(const QPainter& painter, bool outline, const QPen& textPen,
                                                        const QPen& outlinePen) const {
    lys::legend::Style style;
    style.font = painter.font();
    style.outlined = outline;
    style.textColor = textPen.color();
    style.outlineColor = outlinePen.color();
    style.keyed = isKeyed();
    return style;
}

bool LyqColorLookupTableWidget::isKeyed() const {
    return palette().color(backgroundRole()).rgb() == lys::legend::KEY_COLOR;
}

QImage LyqColorLookupTableWidget::createSectionImage(int width, int height, const LyrObject* section,
                                                     const LyrObject* previous, const LyrObject* next) const {
    using lys::legend::Halves;
    updateIfNeeded();
    const Halves halves = d->reading.input.horizontal ? Halves::LowerOverWhite : Halves::LeftOverWhite;
    const Section* shown = asSection(section);
    return shown ? lys::legend::sectionImage(QSize(width, height), halves, *shown, asSection(previous), asSection(next))
                 : QImage();
}

int LyqColorLookupTableWidget::realToWidget(float value) const {
    updateIfNeeded();
    return lys::legend::valueToCoordinate(d->reading.input, d->layout, value);
}

int LyqColorLookupTableWidget::getVirtualBorderSectionSize() const {
    updateIfNeeded();
    return d->layout.extensionLength;
}

QString LyqColorLookupTableWidget::getDescriptionString() const {
    updateIfNeeded();
    return lys::legend::captionText(d->colorTable.get(), d->renderSettings.get(), d->converter);
}

QString LyqColorLookupTableWidget::internalToDisplayString(float value) const {
    updateIfNeeded();
    return lys::legend::labelText(d->colorTable.get(), d->converter, value);
}

float LyqColorLookupTableWidget::getScaledPixelf(float pixels) const {
    return LyqScaling::getScaledPixelf(d->dotsPerInch, pixels);
}

int LyqColorLookupTableWidget::getScaledPixeli(int pixels) const {
    return LyqScaling::getScaledPixeli(d->dotsPerInch, pixels);
}

int LyqColorLookupTableWidget::getScaledPixelip(int pixels) const {
    return LyqScaling::getScaledPixelip(d->dotsPerInch, pixels);
}

QFont LyqColorLookupTableWidget::getScaledFont() const {
    updateIfNeeded();
    return d->reading.style.font;
}

QFontMetrics LyqColorLookupTableWidget::getScaledFontMetrics() const {
    return QFontMetrics(getScaledFont());
}
