#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/Lyrenum.h>
#include <lys_core/LysCoreExport.h>

#include <QObject>
#include <QString>

/** Shows the values of one quantity in the unit that the user chose, and reads what the user types.
 *
 *  Texts follow the user's locale, without group separators, so that what is shown can be typed back. */
class LYS_CORE_EXPORT LyqUnitConverter : public QObject, public LyrIOC {
    Q_OBJECT

public:
    enum DisplayMode { NumberOnly = 0, WithUnit = 1 };

    explicit LyqUnitConverter(Lyrenum quantity, QObject* parent = nullptr);

    Lyrenum getQuantity() const { return mQuantity; }
    /** Changes the quantity; tells displayUnitChanged if the unit is another then. */
    void setQuantity(Lyrenum quantity);

    /** Shows values in this unit of the quantity, whatever the user chose; -1 follows the user again. A unit that is
     * none of the quantity is as good as -1. */
    void setFixedUnit(Lyrenum unit);

    /** The unit that values are shown in, -1 for a quantity without units. */
    Lyrenum getDisplayUnit() const { return mDisplayUnit; }
    /** Its abbreviation, such as "mm"; empty without a unit. */
    QString getDisplayUnitAbbr() const;

    double internalToDisplay(double value) const;
    double displayToInternal(double value) const;

    /** A value as text: general format with `precision` significant digits (6 for -1), trailing zeros dropped. */
    QString internalToDisplayString(double value, int displayMode = NumberOnly, int precision = -1) const;
    /** Reads a number in the user's locale, else in C, with an optional unit of the quantity behind it. Without a unit
     * the display unit is meant. `ok` (may be null) becomes false, and the result 0, for anything else and for numbers
     * that are not finite. */
    double unitStringToInternal(const QString& text, bool* ok = nullptr) const;

    bool iocCallback(Message& message) override;

Q_SIGNALS:
    /** The display unit is another now. */
    void displayUnitChanged(Lyrenum unit);

private:
    void updateDisplayUnit();

    LyrObjectIOCPtr mUnits;
    Lyrenum mQuantity;
    Lyrenum mFixedUnit;
    Lyrenum mDisplayUnit;
};
