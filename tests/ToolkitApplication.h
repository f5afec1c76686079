#pragma once

#include <QApplication>

/** The toolkit's application object for tests: one for the whole process, made by the first that needs it. A base class, to
 *  stand before widgets that are members. */
struct ToolkitApplication {
    ToolkitApplication() {
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        static QApplication application(count, arguments);
    }
};
