#include <lys_core/LyqDockExtension.h>

LyqDockExtension::~LyqDockExtension() = default;

Qt::DockWidgetArea LyqDockExtension::area() const {
    return Qt::RightDockWidgetArea;
}

bool LyqDockExtension::isOpenAtFirst() const {
    return true;
}
