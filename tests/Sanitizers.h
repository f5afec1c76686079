#pragma once

/** For the few tests that have to know of the build's sanitizer. Its allocator keeps freed memory and notes about each
 *  byte beside it: bounds of a process's resident size do not hold. */
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool SANITIZED = true;
#else
inline constexpr bool SANITIZED = false;
#endif

/** How many times longer instrumented code may take: bounds of processor time are multiplied by it. */
#if defined(__SANITIZE_THREAD__)
inline constexpr int SANITIZER_SLOWDOWN = 15;
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr int SANITIZER_SLOWDOWN = 5;
#else
inline constexpr int SANITIZER_SLOWDOWN = 1;
#endif
