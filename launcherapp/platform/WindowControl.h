#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Screen.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace tessarine {

/// Moves, closes and kills the windows of other programs. A window is the id of `AppWindow`; one
/// that has gone is no error, and nothing happens. Rectangles, those of the screens included, are
/// in the display's own pixels, under Wayland in the compositor's logical ones. Main thread only. A
/// call waits for the display's answer: mostly less than a millisecond, and longer only while
/// another program has the display to itself.
class WindowControl {
public:
    /// Longest wait for a window manager, and the program, to make a window an ordinary one: two
    /// in a row are hardly seen, and a program that takes longer keeps the size it had.
    static constexpr std::chrono::milliseconds longestRestore{150};

    virtual ~WindowControl() = default;

    /// Whether windows can be moved on this desktop. Asks nobody while they can: it is called for
    /// each keystroke.
    virtual Ability ability() const = 0;

    /// In the desktop's own order; empty without a display.
    virtual std::vector<Screen> screens() const = 0;

    /// What is to be seen of the window, with the border and title bar that the window manager or
    /// the program itself gives it, and without a shadow. Nothing when the window is gone.
    virtual std::optional<Rectangle> frame(std::uint64_t window) const = 0;

    /// Makes a minimised, maximised, full-screen, rolled-up or tiled window an ordinary one, which
    /// has a place of its own, and waits until it is, at most `longestRestore`.
    virtual void restore(std::uint64_t window) = 0;

    /// Gives the frame of an ordinary window another size. The window may round it to what suits
    /// it.
    virtual void resize(std::uint64_t window, double width, double height) = 0;

    /// Puts the top left of the frame of an ordinary window there.
    virtual void move(std::uint64_t window, const Point& topLeft) = 0;

    /// Asks the window to close, as its close button would: its program may ask the user first.
    virtual void close(std::uint64_t window) = 0;

    /// Whether programs can be ended with `kill`. Asks nobody while they can.
    virtual Ability killing() const { return {}; }

    /// Ends the window's program at once, with what is unsaved and all its windows. False when it
    /// can't be ended, is this program, or has no such window on the desktop.
    virtual bool kill(std::uint64_t window) = 0;
};

} // namespace tessarine
