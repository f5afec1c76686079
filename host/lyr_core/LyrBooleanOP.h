#pragma once

#include <lyr_core/LyrSingleValueProperty.h>

/** A boolean, held as an identifier 0 or 1; every other number is refused. */
class LyrBooleanOP : public LyrSingleValueOP<LyrSingleValuePropertyIF<Lyrenum>, Lyrenum> {
public:
    LyrBooleanOP() {
        setResetValue(0);
        storeSilently(0);
    }

    LyrValueType getValueType() const noexcept override { return LyrValueType::Boolean; }
    unsigned int checkData(const Lyrenum& value, bool) const override { return value == 0 || value == 1 ? 1 : 0; }
};
