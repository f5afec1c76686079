// What most tests include, for builds that read it once (LYS_PRECOMPILE). Tests include what they need all the same.
#pragma once

#include "../cmake/CommonHeaders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#if __has_include(<QTest>)
#include <QTest>
#endif
