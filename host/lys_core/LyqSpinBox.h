#pragma once

#include <lyr_core/Lyrenum.h>
#include <lys_core/LysCoreExport.h>

#include <QDoubleSpinBox>

#include <memory>

/** A box for a number with a quantity. Its value and limits are in the quantity's internal unit; what is shown and
 * typed is in the display unit that the user chose, or in one of the box's own. Typed text is a number in the user's
 * locale, else in C, with an optional unit: "1,5 mm", "1.5", "0.06 in".
 *
 *  A value that was set, and not changed by the user since, is given back as it was set, whatever is shown of it. A
 * number is taken when it is complete: with Return, on leaving the box, or by a step; then it is rounded to the
 * precision in the unit shown. Escape drops what is being typed. A text that is no number, or one outside the limits,
 * is refused: the box says why and shows the old value.
 *
 *  Members of the base that are not named here tell of the value as it is shown. */
class LYS_CORE_EXPORT LyqSpinBox : public QDoubleSpinBox {
    Q_OBJECT
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(double minimum READ minimum WRITE setMinimum)
    Q_PROPERTY(double maximum READ maximum WRITE setMaximum)
    Q_PROPERTY(int decimals READ decimals WRITE setDecimals)

public:
    /** Numbers without unit from 0 to 99.99, 2 decimals. */
    explicit LyqSpinBox(QWidget* parent = nullptr, const char* name = nullptr);
    ~LyqSpinBox() override;

    /** Changes the quantity; value and limits keep their numbers in the internal unit. */
    void setQuantity(Lyrenum quantity);
    Lyrenum getQuantity() const;
    /** Shows this unit of the quantity, whatever the user chose for others; -1 follows the user again. */
    void setUnit(Lyrenum unit);
    /** The unit that is shown, -1 without one. */
    Lyrenum getUnit() const;

    /** Decimals in the unit shown. */
    void setPrecision(int decimals);
    int getPrecision() const;
    void setDecimals(int decimals) { setPrecision(decimals); }
    int decimals() const { return getPrecision(); }

    /** Limits in the internal unit, at most those of a float. A value outside of them becomes the nearest limit. An
     * upper one below the lower one becomes equal to it; limits that are no numbers are ignored. */
    void setRange(double minimum, double maximum);
    void setMinimum(double minimum);
    void setMaximum(double maximum);
    double minimum() const;
    double maximum() const;

    /** The value in the internal unit. */
    double value() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    QValidator::State validate(QString& text, int& position) const override;
    void fixup(QString& text) const override;
    double valueFromText(const QString& text) const override;
    QString textFromValue(double shown) const override;
    void stepBy(int steps) override;

public Q_SLOTS:
    /** Sets the value, brought between the limits; what is no number is ignored. A value that is there already leaves a
     * text alone that is being typed. */
    void setValue(double value);

Q_SIGNALS:
    /** The value, in the internal unit, is another now. */
    void valueChanged(double value);
    /** A typed text was refused, for this reason. */
    void refused(const QString& reason) const;

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    struct Private;
    void showUnit();
    void showValue(double internal);
    void applyRange();
    void refreshText();
    QString reasonToRefuse(const QString& text, double& shown) const;

    std::unique_ptr<Private> d;
};
