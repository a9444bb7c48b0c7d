#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/Screen.h"
#include "launcherapp/platform/linux/x11/X11WorkAreas.h"

#include <optional>
#include <vector>

namespace tessarine {

class X11Connection;

/// Monitors and places on an X11 display, in Qt's logical pixels. Main thread only; each question
/// waits for the display's answers.
class X11Screens {
public:
    /// The connection must outlive this.
    explicit X11Screens(const X11Connection& display) : display_(display) {}

    std::vector<Screen> all();

    /// Nothing when the display doesn't answer.
    std::optional<Point> pointer() const;

private:
    const X11Connection& display_;
    X11WorkAreas workAreas_{display_};
};

} // namespace tessarine
