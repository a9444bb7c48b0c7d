#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/PanelWindow.h"

#include <cstddef>
#include <cstdint>
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
    struct Room;
    Room room(std::size_t monitorCount);

    const X11Connection& display_;
    /// The windows that were there last: mostly they still are, and are asked about before it is
    /// known, which saves waiting for the display once more.
    std::vector<std::uint32_t> clients_;
};

} // namespace tessarine
