#pragma once

#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/platform/linux/x11/X11ClientProcesses.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"
#include "launcherapp/platform/linux/x11/X11Monitors.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>

namespace tessarine {

/// Windows as an X11 window manager lets them be moved (Extended Window Manager Hints 1.5), over a
/// connection of its own, made with the first question: most runs ask none. Losing the display
/// makes it unable, with the reason, and nothing worse. Main thread only.
class X11WindowControl : public WindowControl {
public:
    X11WindowControl() = default;
    X11WindowControl(const X11WindowControl&) = delete;
    X11WindowControl& operator=(const X11WindowControl&) = delete;

    Ability ability() const override;
    std::vector<Screen> screens() const override;
    std::optional<Rectangle> frame(std::uint64_t window) const override;
    void restore(std::uint64_t window) override;
    void resize(std::uint64_t window, double width, double height) override;
    void move(std::uint64_t window, const Point& topLeft) override;
    void close(std::uint64_t window) override;
    bool kill(std::uint64_t window) override;

private:
    using Window = X11Connection::Window;
    struct Shape;

    /// The connection and what is asked over it.
    struct Door {
        X11Connection display;
        X11ClientProcesses clients{display.xcb()};
        X11Monitors monitors{display};
    };

    Door& door() const;

    X11Connection& display() const { return door().display; }

    bool isReady() const;
    std::optional<Shape> shape(Window window) const;
    bool findManager() const;
    bool isAnyOf(Window window, std::span<const char* const> states) const;
    bool lacksShadow(Window window) const;
    bool waitForEvent(std::chrono::milliseconds longest) const;
    void listen(Window window, std::uint32_t events) const;
    void place(Window window, std::uint32_t parts, const std::array<std::uint32_t, 4>& frame) const;
    void ask(Window window, const char* request, const std::array<std::uint32_t, 5>& numbers) const;

    mutable std::optional<Door> door_;
    mutable Window manager_ = 0; ///< the window manager's own window; 0 while none is known
};

} // namespace tessarine
