#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Screen.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tessarine {

/// Moves, closes and kills the windows of other programs. A window is the id of `AppWindow`.
/// Main thread only; a call waits at most a few milliseconds for the display.
class WindowControl {
public:
    virtual ~WindowControl() = default;

    /// Whether windows can be moved on this desktop. Known without asking anybody.
    virtual Ability ability() const = 0;

    /// In the desktop's own order; empty without a display.
    virtual std::vector<Screen> screens() const = 0;

    /// All of the window, with the border and title bar that the window manager gives it. Nothing
    /// when the window is gone.
    virtual std::optional<Rectangle> frame(std::uint64_t window) const = 0;

    /// Gives the window another size, border included; a maximised or full-screen one is made an
    /// ordinary one first. The window may round the size to what suits it.
    virtual void resize(std::uint64_t window, double width, double height) = 0;

    /// Puts the top left of the window, border included, there.
    virtual void move(std::uint64_t window, const Point& topLeft) = 0;

    /// Asks the window to close, as its close button would: its program may ask the user first.
    virtual void close(std::uint64_t window) = 0;

    /// Ends the window's program at once, with what is unsaved. False when its process is not
    /// known, or can't be ended.
    virtual bool kill(std::uint64_t window) = 0;
};

} // namespace tessarine
