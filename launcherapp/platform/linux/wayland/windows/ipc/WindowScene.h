#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/Screen.h"
#include "launcherapp/platform/WindowList.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarine {

/// What a compositor tells of its windows and screens at one moment. A value.
struct WindowScene {
    struct Window {
        AppWindow window;            ///< without what the process itself tells
        Rectangle frame;             ///< border and title bar included, in logical pixels
        bool isTiled = false;        ///< its place is the compositor's choice
        bool isFullScreen = false;   ///< full-screen, or maximised as if it were
        bool isX11 = false;          ///< of the compositor's X server
        std::uint64_t x11Window = 0; ///< its number there; 0 where that isn't told

        bool operator==(const Window&) const = default;
    };

    std::vector<Window> windows; ///< in the order in which the compositor tells them
    std::vector<Screen> screens;
    /// The window that has the keyboard, or gets it back from what is in front of all windows.
    std::optional<std::uint64_t> active;

    /// Null when there is no such window.
    const Window* find(std::uint64_t id) const;

    bool operator==(const WindowScene&) const = default;
};

/// A process's number as another program tells it; 0 for what is none that a window could have.
std::int64_t processNumber(std::int64_t told);

} // namespace tessarine
