#pragma once

#include <concepts>
#include <limits>
#include <type_traits>

#include <lyr_core/LyrValuePair.h>

/** The closed interval [low, high] of numbers of type T; S is the type of its size. With integers it is a selection of
 *  the items low to high. An interval with low > high, or with a bound that is NaN, is empty; operations that end with
 *  nothing give EMPTY(), and all empty intervals are equal. */
template <class T, class S = T>
requires std::integral<T> || std::floating_point<T>
struct LyrInterval {
    T low = std::numeric_limits<T>::max();
    T high = std::numeric_limits<T>::lowest();

    /** The empty interval. */
    constexpr LyrInterval() = default;
    constexpr LyrInterval(T low_, T high_) : low(low_), high(high_) {}
    /** The interval of one value. */
    constexpr explicit LyrInterval(T value) : low(value), high(value) {}
    constexpr explicit LyrInterval(const LyrValuePair<T>& bounds) : low(bounds.first), high(bounds.second) {}

    /** (largest, lowest) finite value, (3.4028235e38, −3.4028235e38) for float. */
    static constexpr LyrInterval EMPTY() { return LyrInterval(); }

    constexpr LyrValuePair<T> toPair() const { return {low, high}; }

    constexpr bool isEmpty() const { return !(low <= high); }

    /** high − low, for integers the number of items high − low + 1 (at most the largest S); 0 when empty. */
    constexpr S getSize() const {
        if (isEmpty()) {
            return S(0);
        }
        if constexpr (std::integral<T> && std::integral<S>) {
            using Unsigned = std::make_unsigned_t<T>;
            // The difference of unsigned numbers is right even where that of signed ones would overflow.
            const auto distance = static_cast<Unsigned>(static_cast<Unsigned>(high) - static_cast<Unsigned>(low));
            constexpr auto largest = static_cast<std::make_unsigned_t<S>>(std::numeric_limits<S>::max());
            return distance >= largest ? std::numeric_limits<S>::max() : static_cast<S>(static_cast<S>(distance) + 1);
        } else if constexpr (std::integral<T>) {
            return static_cast<S>(high) - static_cast<S>(low) + S(1);
        } else {
            return static_cast<S>(static_cast<S>(high) - static_cast<S>(low));
        }
    }

    /** The nearest value in the interval; a NaN stays NaN, and an empty interval changes nothing. */
    constexpr T clamp(T value) const {
        if (isEmpty()) {
            return value;
        }
        return value < low ? low : value > high ? high : value;
    }

    constexpr bool contains(T value) const { return low <= value && value <= high; }
    /** True when every value of the other one lies in this one; the empty interval lies in every interval. */
    constexpr bool contains(const LyrInterval& other) const {
        return other.isEmpty() || (low <= other.low && other.high <= high);
    }

    /** Leaves what both have in common. */
    constexpr LyrInterval& intersect(const LyrInterval& other) {
        if (isEmpty() || other.isEmpty()) {
            return *this = EMPTY();
        }
        low = other.low > low ? other.low : low;
        high = other.high < high ? other.high : high;
        return emptyIfNothing();
    }

    /** Grows to the smallest interval that holds both; an empty one adds nothing. */
    constexpr LyrInterval& unite(const LyrInterval& other) {
        if (other.isEmpty()) {
            return emptyIfNothing();
        }
        if (isEmpty()) {
            return *this = other;
        }
        low = other.low < low ? other.low : low;
        high = other.high > high ? other.high : high;
        return *this;
    }
    /** Grows to hold the value; a NaN adds nothing. */
    constexpr LyrInterval& unite(T value) { return unite(LyrInterval(value)); }

    /** Moves both bounds outwards by the amount, inwards if that is negative. An empty interval stays empty; integer
     *  bounds stop at the limits of their type. */
    constexpr LyrInterval& enlarge(T by) {
        if (isEmpty()) {
            return *this = EMPTY();
        }
        low = moved(low, by, false);
        high = moved(high, by, true);
        return emptyIfNothing();
    }

    /** Exchanges bounds that were given in the wrong order. EMPTY() itself stays empty. */
    constexpr LyrInterval& normalize() {
        const bool isMarker = low == EMPTY().low && high == EMPTY().high;
        if (low > high && !isMarker) {
            const T larger = low;
            low = high;
            high = larger;
        }
        return *this;
    }

    /** The same set of values. */
    friend constexpr bool operator==(const LyrInterval& a, const LyrInterval& b) {
        return a.isEmpty() || b.isEmpty() ? a.isEmpty() == b.isEmpty() : a.low == b.low && a.high == b.high;
    }

private:
    constexpr LyrInterval& emptyIfNothing() { return isEmpty() ? *this = EMPTY() : *this; }

    // value + by or value - by, for integers stopped at the limits of the type.
    static constexpr T moved(T value, T by, bool upwards) {
        if constexpr (std::floating_point<T>) {
            return upwards ? value + by : value - by;
        } else {
            T result{};
            const bool overflows =
                upwards ? __builtin_add_overflow(value, by, &result) : __builtin_sub_overflow(value, by, &result);
            if (!overflows) {
                return result;
            }
            return upwards == (by > 0) ? std::numeric_limits<T>::max() : std::numeric_limits<T>::lowest();
        }
    }
};
