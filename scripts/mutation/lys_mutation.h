// Written into a copy of the sources by scripts/mutate.py: each operator and number goes through one of these, and the
// environment variable LYS_MUTANT tells which one does something else. Nothing is mutated while the compiler evaluates.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <type_traits>

namespace lysm {

inline const int active = std::getenv("LYS_MUTANT") ? std::atoi(std::getenv("LYS_MUTANT")) : -1;

// Bounds of the section in which each mutant that this library or program can choose while it runs leaves its number.
extern const int compiledBegin[] __asm__("__start_lysm_sites") __attribute__((weak, visibility("hidden")));
extern const int compiledEnd[] __asm__("__stop_lysm_sites") __attribute__((weak, visibility("hidden")));

/// Which mutants the tests came by. At the end the numbers go into a file: `compiled 7`, `reached 7`.
struct Reached {
    bool at[LYS_MUTANT_COUNT] = {};
    ~Reached() {
        const char* path = std::getenv("LYS_MUTANTS_REACHED");
        std::FILE* file = path ? std::fopen(path, "a") : nullptr;
        if (!file)
            return;
        for (const int* id = compiledBegin; id != compiledEnd; ++id)
            std::fprintf(file, "compiled %d\n", *id);
        for (int id = 0; id < LYS_MUTANT_COUNT; ++id) {
            if (at[id])
                std::fprintf(file, "reached %d\n", id);
        }
        std::fclose(file);
    }
};
inline Reached reached;

#define LYSM_INLINE __attribute__((always_inline)) constexpr

/// Whether mutant `id` is the active one. What only the compiler evaluates leaves nothing in the program.
template <int id>
LYSM_INLINE bool on() {
    if (std::is_constant_evaluated())
        return false;
    asm volatile(".pushsection lysm_sites,\"a\"\n.long %c0\n.popsection" : : "i"(id));
    reached.at[id] = true;
    return active == id;
}

/// `a < b` becomes `a < Lt<id>{} < b`, at the precedence that it had. Such an operator has one mutant or two.
template <class T, class Operator>
struct Left {
    const T& value;
};

#define LYSM_COMPARISON(Name, op, boundary, opposite)                      \
    template <int id>                                                      \
    struct Name {};                                                        \
    template <class T, int id>                                             \
    LYSM_INLINE Left<T, Name<id>> operator op(const T& a, Name<id>) {      \
        return {a};                                                        \
    }                                                                      \
    template <class T, int id, class U>                                    \
    LYSM_INLINE bool operator op(const Left<T, Name<id>>& a, const U& b) { \
        if (on<id>())                                                      \
            return a.value boundary b;                                     \
        if (on<id + 1>())                                                  \
            return a.value opposite b;                                     \
        return a.value op b;                                               \
    }

LYSM_COMPARISON(Lt, <, <=, >=)
LYSM_COMPARISON(Le, <=, <, >)
LYSM_COMPARISON(Gt, >, >=, <=)
LYSM_COMPARISON(Ge, >=, >, <)

#define LYSM_OPERATOR(Name, op, other)                                                             \
    template <int id>                                                                              \
    struct Name {};                                                                                \
    template <class T, int id>                                                                     \
    LYSM_INLINE Left<T, Name<id>> operator op(const T& a, Name<id>) {                              \
        return {a};                                                                                \
    }                                                                                              \
    template <class T, int id, class U>                                                            \
    LYSM_INLINE auto operator op(const Left<T, Name<id>>& a, const U& b)->decltype(a.value op b) { \
        if constexpr (requires { static_cast<decltype(a.value op b)>(a.value other b); }) {        \
            if (on<id>())                                                                          \
                return static_cast<decltype(a.value op b)>(a.value other b);                       \
        }                                                                                          \
        return a.value op b;                                                                       \
    }

LYSM_OPERATOR(Eq, ==, !=)
LYSM_OPERATOR(Ne, !=, ==)
LYSM_OPERATOR(Plus, +, -)
LYSM_OPERATOR(Minus, -, +)
LYSM_OPERATOR(Times, *, /)
LYSM_OPERATOR(Over, /, *)
LYSM_OPERATOR(Rest, %, /)
LYSM_OPERATOR(BitAnd, &, |)
LYSM_OPERATOR(BitOr, |, &)
LYSM_OPERATOR(ShiftLeft, <<, >>)
LYSM_OPERATOR(ShiftRight, >>, <<)

/// `a && b` becomes `a && And<id>{} && [&] { return b; }`.
template <int id>
struct And {};
template <int id>
struct Or {};
template <class Operator>
struct Condition {
    bool value;
};
template <class T, int id>
LYSM_INLINE Condition<And<id>> operator&&(const T& a, And<id>) {
    return {static_cast<bool>(a)};
}
template <class T, int id>
LYSM_INLINE Condition<Or<id>> operator||(const T& a, Or<id>) {
    return {static_cast<bool>(a)};
}
template <int id, class F>
LYSM_INLINE bool operator&&(Condition<And<id>> a, const F& b) {
    return on<id>() ? a.value || static_cast<bool>(b()) : a.value && static_cast<bool>(b());
}
template <int id, class F>
LYSM_INLINE bool operator||(Condition<Or<id>> a, const F& b) {
    return on<id>() ? a.value && static_cast<bool>(b()) : a.value || static_cast<bool>(b());
}

/// `!a` becomes `Not<id>{}->*a`.
template <int id>
struct Not {};
template <int id, class T>
LYSM_INLINE bool operator->*(Not<id>, const T& a) {
    return on<id>() ? static_cast<bool>(a) : !static_cast<bool>(a);
}

/// A number, and the number beside it; true and false.
template <int id, class T>
LYSM_INLINE T number(T value, T other) {
    return on<id>() ? other : value;
}

template <int id, class T>
LYSM_INLINE T least(const T& a, const T& b) {
    return (b < a) != on<id>() ? b : a;
}
template <int id, class T>
LYSM_INLINE T greatest(const T& a, const T& b) {
    return (a < b) != on<id>() ? b : a;
}

/// The right side of += and -=.
template <int id, class T>
LYSM_INLINE T summand(const T& value) {
    return on<id>() ? static_cast<T>(T{} - value) : value;
}

}  // namespace lysm
