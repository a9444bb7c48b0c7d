#pragma once

#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/platform/linux/x11/X11ClientProcesses.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"
#include "launcherapp/platform/linux/x11/X11Monitors.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace tessarine {

/// Windows as an X11 window manager lets them be moved (Extended Window Manager Hints 1.5), over a
/// connection of its own. Losing the display makes it unable, with the reason, and nothing worse.
/// Main thread only.
class X11WindowControl : public WindowControl {
public:
    X11WindowControl();
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

    std::optional<Shape> shape(Window window) const;
    bool findManager() const;
    bool isSpecial(Window window) const;
    bool lacksShadow(Window window) const;
    bool waitForEvent(std::chrono::milliseconds longest) const;
    void listen(Window window, std::uint32_t events) const;
    void ask(Window window, const char* request, const std::vector<std::uint32_t>& numbers) const;

    X11Connection display_;
    X11ClientProcesses clients_{display_.xcb()};
    mutable X11Monitors monitors_{display_};
    mutable Window manager_ = 0; ///< the window manager's own window; 0 while none is known
};

} // namespace tessarine
