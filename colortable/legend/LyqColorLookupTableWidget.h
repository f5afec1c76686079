#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrRGBA.h>

#include <QFont>
#include <QFontMetrics>
#include <QFrame>
#include <QImage>

#include <memory>

class LyrObject;
class QPen;

namespace lys::legend {
struct Style;
}

/** Shows the colour bar legend of one table in the way that one render settings object says: a box for each section,
 * boxes beyond the ends of the range, labels and a caption.
 *
 *  It paints into a pixmap that is made anew only when something changed, and copies that to the screen. A caption that
 * stands last (labels on top of a horizontal bar) has its baseline on the lower edge of the widget at its size hint:
 * descenders show where there is room below.
 *
 *  Without render settings: a vertical bar 24 pixels thick, black text with a white outline in the application's font.
 */
class LYS_COLORTABLE_EXPORT LyqColorLookupTableWidget : public QFrame, public LyrIOC {
    Q_OBJECT

public:
    explicit LyqColorLookupTableWidget(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqColorLookupTableWidget() override;

    void setColorTable(LyrObject* table);
    void setRenderSettings(LyrObject* settings);

    /** Resolution for lengths and fonts; 0 leaves it to the application's default. */
    void setDotsPerInch(float dotsPerInch);
    float getDotsPerInch() const;

    /** Marks the picture out of date and schedules a repaint. */
    void invalidate();
    /** Whether the picture is out of date: marked so, or the enabled state, table, one of its sections or the settings
     * changed after the last update. */
    bool needsUpdate() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /** Draws a text at a baseline, with an outline if asked for. */
    void renderText(QPainter& painter, int x, int y, const QString& text, bool outline, const QPen& textPen,
                    const QPen& outlinePen);
    /** Draws a text in a rectangle with the toolkit's alignment flags. */
    void renderText(QPainter& painter, const QRect& rect, int flags, const QString& text, bool outline,
                    const QPen& textPen, const QPen& outlinePen);

    /** A picture of one section along the bar. */
    QImage createSectionImage(int width, int height, const LyrObject* section, const LyrObject* previous,
                              const LyrObject* next) const;

    /** The coordinate of a value along the bar. */
    int realToWidget(float value) const;
    /** The length kept free for an extension box. */
    int getVirtualBorderSectionSize() const;
    QString getDescriptionString() const;
    QString internalToDisplayString(float value) const;

    float getScaledPixelf(float pixels) const;
    int getScaledPixeli(int pixels) const;
    int getScaledPixelip(int pixels) const;
    QFont getScaledFont() const;
    QFontMetrics getScaledFontMetrics() const;

    bool iocCallback(Message& message) override;

protected:
    /** Makes the picture anew; called only when it is out of date. */
    virtual void doSync();

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private Q_SLOTS:
    void unitChangedSlot();

private:
    struct Private;
    void stamp();
    void sync();
    void updateData() const;
    void updateIfNeeded() const;
    bool isKeyed() const;
    lys::legend::Style textStyle(const QPainter& painter, bool outline, const QPen& textPen,
                                 const QPen& outlinePen) const;

    std::unique_ptr<Private> d;
};
