#pragma once

#include <QPointer>

/** The 3.3 series' name for a pointer that becomes null when its QObject goes. */
template <class T>
using QGuardedPtr = QPointer<T>;
