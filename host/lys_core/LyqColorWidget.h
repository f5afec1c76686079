#pragma once

#include <lyr_core/LyrRGBA.h>
#include <lys_core/LysCoreExport.h>

#include <QAbstractButton>
#include <QPointer>

class QColorDialog;

/** A button that shows a colour and lets the user choose another, opacity included.
 *
 *  While the dialog is open every colour that is tried is told at once. Cancelling shows the first one again, exactly,
 * and says so: whoever wrote what was tried takes it back. Alpha is shown by the colour over white (left half) and over
 * black (right half). */
class LYS_CORE_EXPORT LyqColorWidget : public QAbstractButton {
    Q_OBJECT

public:
    explicit LyqColorWidget(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqColorWidget() override;

    const LyrRGBAf& rgba() const { return mColor; }
    /** Shows a colour, silently. Channels outside of [0, 1] are kept and shown as the nearest that can be. */
    void setRgba(const LyrRGBAf& color);

    /** The toolkit's colour: each channel int(c * 255), a NaN 0. */
    static QColor toQColor(const LyrRGBAf& color);
    /** Each 8-bit channel times 0.003921569f. */
    static LyrRGBAf fromQColor(const QColor& color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /** The user chose, or tries, another colour. */
    void rgbaChanged(const LyrRGBAf& color);
    /** The user begins, and has ended, choosing; told in between if nothing of what was tried is to stay. */
    void choosingStarted();
    void choosingCancelled();
    void choosingFinished();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void choose();
    void take(const LyrRGBAf& color);

    LyrRGBAf mColor{LyrRGBAf::BLACK()};
    QPointer<QColorDialog> mDialog;
};
