// What most sources include, for builds that read it once (LYS_PRECOMPILE). Sources include what they need all the
// same.
#pragma once

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#if __has_include(<QApplication>)
#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QTableWidget>
#elif __has_include(<QCoreApplication>)
#include <QCoreApplication>
#endif
