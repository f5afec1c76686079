#include "BlockColors.h"

#include "Failure.h"
#include "Numbers.h"

namespace lys::cli {

BlockColors::BlockColors(const LyrColorLookupTable& table, std::string name) : mTable(table), mName(std::move(name)) {
    if (!mTable.getColors(0, nullptr, nullptr)) {
        throwFailed(mName +
                    ": the table is not valid: it needs at least two positions, and one section more than positions");
    }
}

std::span<const LyrRGBA<float>> BlockColors::next(std::span<const float> values) {
    if (mColors.size() < values.size()) {
        mColors.resize(values.size());
    }
    if (!mTable.getColors(static_cast<long long>(values.size()), values.data(), mColors.data())) {
        fail(values);
    }
    mCount += static_cast<std::int64_t>(values.size());
    return std::span(mColors).first(values.size());
}

// Colouring starts at the end of an array, so the last value without a colour is the one that it failed at.
void BlockColors::fail(std::span<const float> values) const {
    for (std::size_t i = values.size(); i-- > 0;) {
        LyrRGBA<float> ignored;
        if (!mTable.getColors(1, &values[i], &ignored)) {
            throwFailed(mName + ": the table has no colour for " + formatNumber(values[i]) + " (value number " +
                        std::to_string(mCount + static_cast<std::int64_t>(i)) +
                        ", counted from 0); 'colortable info' shows its sections");
        }
    }
    throwFailed(mName + ": the table could not colour the values");
}

}  // namespace lys::cli
