#pragma once

/** Two values of one type, for instance a range (low, high) or a switch (below, above). */
template <class T>
struct LyrValuePair {
    T first{};
    T second{};

    constexpr LyrValuePair() = default;
    constexpr LyrValuePair(T first_, T second_) : first(first_), second(second_) {}

    /** The value 0 (first) or 1 (second); any other index is a mistake of the caller. */
    constexpr T& operator[](int index) { return index == 0 ? first : second; }
    constexpr const T& operator[](int index) const { return index == 0 ? first : second; }

    /** Plain comparison of both values: −0 equals 0, a NaN equals nothing. */
    friend constexpr bool operator==(const LyrValuePair& a, const LyrValuePair& b) = default;
};

static_assert(sizeof(LyrValuePair<float>) == 2 * sizeof(float));
