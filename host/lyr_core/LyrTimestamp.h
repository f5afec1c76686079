#pragma once

#include <compare>
#include <cstdint>

#include <lyr_core/LyrCoreExport.h>

/** When something happened, as a number from one counter of the whole process. Two events never share a timestamp, and
 * a later event of a thread has the greater one. A default-constructed timestamp is null and lies before every other.
 */
class LYR_CORE_EXPORT LyrTimestamp {
public:
    constexpr LyrTimestamp() = default;

    /** A new timestamp, greater than every one handed out before; safe to call from any thread. */
    static LyrTimestamp getCurrentTimestamp() noexcept;

    constexpr bool isNull() const { return mCount == 0; }

    friend constexpr auto operator<=>(const LyrTimestamp& a, const LyrTimestamp& b) = default;  // NOLINT: no pointer

private:
    std::uint64_t mCount = 0;
};
