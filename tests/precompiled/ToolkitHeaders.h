// What most tests of windows include. Read once for all test programs; tests include what they need all the same.
#pragma once

#include "PlainHeaders.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
