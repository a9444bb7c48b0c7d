#pragma once

#include "launcherapp/platform/Screen.h"
#include "launcherapp/platform/linux/x11/X11WorkAreas.h"

#include <vector>

namespace tessarine {

class X11Connection;

/// The monitors of an X11 display, in the display's own pixels, in which the windows of other
/// programs are placed: Qt's own pixels are larger on a dense monitor. Main thread only; each
/// question waits for the display's answers.
class X11Monitors {
public:
    /// The connection must outlive this.
    explicit X11Monitors(const X11Connection& display);

    /// In the display's order, of two that show the same the first; one for the whole desktop
    /// where the display tells none (RandR before 1.5), and none without a display. One is the
    /// main one.
    std::vector<Screen> all();

private:
    std::vector<Screen> told() const;

    const X11Connection& display_;
    X11WorkAreas workAreas_{display_};
    bool areTold_;
};

} // namespace tessarine
