#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/Screen.h"

#include <functional>
#include <optional>
#include <vector>

namespace tessarine {

/// The panel's window: made once, hidden again and again. It holds the keyboard while the
/// application in front stays the active one. Main thread only; nothing here waits longer than a
/// round trip to the display.
class PanelWindow {
public:
    struct Events {
        /// The keyboard went elsewhere: a click outside, another window that took it, a lost grab.
        std::function<void()> lostKeyboard;
        /// Another program had the keyboard at the show and has it still: told before the
        /// `lostKeyboard` that follows from it.
        std::function<void()> keyboardRefused;
        /// The keyboard was not free at the show and has come since.
        std::function<void()> keyboardCame;
        /// The user moved the window, or the program did.
        std::function<void(Rectangle frame)> moved;
        /// What was asked for is drawn and the display has it: once after each `show`.
        std::function<void()> painted;
        /// Monitors came, went or changed.
        std::function<void()> screensChanged;
    };

    virtual ~PanelWindow() = default;

    /// Set once, before the first show.
    virtual void setEvents(Events events) = 0;

    /// Never empty while there is a display.
    virtual std::vector<Screen> screens() const = 0;
    /// Where the pointer is; nothing where the desktop doesn't tell.
    virtual std::optional<Point> pointer() const = 0;

    virtual Rectangle frame() const = 0;
    virtual void setFrame(const Rectangle& frame) = 0;

    /// Brings it up with the field focused, and takes the keyboard: at once when it is free, else
    /// as soon as it is, trying for a second before `lostKeyboard`. Where it is an ordinary window
    /// or nobody has a keyboard it stays up instead, for the pointer.
    virtual void show() = 0;
    virtual void hide() = 0;
    virtual bool isVisible() const = 0;
    virtual bool hasKeyboard() const = 0;
    /// The height that the display itself has the window at; nothing when it has none to be seen.
    virtual std::optional<double> displayedHeight() const = 0;

    /// Lays out and draws all of it without anything to be seen, so that the next show need not.
    virtual void drawHidden() = 0;
};

} // namespace tessarine
