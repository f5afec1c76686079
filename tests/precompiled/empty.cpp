// A program of nothing but the headers that CMake precompiles for it; the test programs use those.
#include <gtest/gtest.h>
