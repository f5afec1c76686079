#pragma once

#include <vector>

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/Lyrenum.h>

/** The quantities that values measure, and their units. Where memory runs out, texts are null and lists are empty, and
 *  an error is reported.
 *
 *  Quantities are Length, Area, Volume, Angle, Percent and Number. Inside the program every value is held in the
 *  internal unit of its quantity: mm, mm², mm³ and radians; percentages and plain numbers are held as they are shown.
 */
class LYR_CORE_EXPORT LyrQuantity {
public:
    /** All quantities. */
    static std::vector<Lyrenum> getQuantities();
    static bool isQuantity(Lyrenum id);

    /** The internal unit of a quantity; −1 for one without units (Number) and for what is no quantity. */
    static Lyrenum getUnit(Lyrenum quantity);
    /** All units of a quantity, the internal one first; none for Number and for what is no quantity. */
    static std::vector<Lyrenum> getUnits(Lyrenum quantity);
    static bool isUnitOf(Lyrenum unit, Lyrenum quantity);
    /** The unit of a quantity that a text names: by its symbol ("µm"), its registered name ("Micrometer") or a spelling
     *  that is easy to type ("um", "mm2", "deg"). Case counts. −1 when there is none. */
    static Lyrenum findUnit(Lyrenum quantity, const LyrString& text);

    /** A value given in a unit, in the internal unit of the quantity. The unit −1 is the internal unit. A unit that is
     *  not one of the quantity is reported as Lyr::InvalidParameters, and the value comes back as it is. Formed in
     *  double: one product and one quotient. */
    static double unitToInternal(double value, Lyrenum quantity, Lyrenum unit);
    /** A value given in the internal unit of the quantity, in another of its units; see unitToInternal(). */
    static double internalToUnit(double value, Lyrenum quantity, Lyrenum unit);

    /** The unit's symbol, "mm" or "°" for instance; null for what is no unit. */
    static LyrString getUnitSymbol(Lyrenum unit);
    /** The unit's translated name, in the context "Quantity"; null for what is no unit. */
    static LyrString getUnitName(Lyrenum unit);
    /** The quantity's translated name, in the context "Quantity"; null for what is no quantity. */
    static LyrString getQuantityName(Lyrenum quantity);
};
