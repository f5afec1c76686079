#pragma once

#include <QApplication>

/** The toolkit's application object for tests: one for the whole process, made by the first that needs it. A base
 * class, to stand before widgets that are members. */
struct ToolkitApplication {
    ToolkitApplication() {
        static int count = 1;
        static char name[] = "test";
        static char* arguments[] = {name, nullptr};
        // Never destroyed: the toolkit's own statics go before those of the program.
        [[maybe_unused]] static auto* const application = new QApplication(count, arguments);
    }
};
