#pragma once

#include <QSize>

#include <sys/types.h>

namespace workbench {

/** A display that nobody sees, for a program that draws where there is none: an Xvfb server of its own, which ends with
 * this process. */
class VirtualDisplay {
public:
    VirtualDisplay() = default;
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /** Starts a server with a screen of this size in pixels and sets DISPLAY. To be called before the application
     * object is made. False where Xvfb is missing or does not start. */
    bool start(const QSize& screen);

private:
    pid_t mServer = -1;
};

}  // namespace workbench
