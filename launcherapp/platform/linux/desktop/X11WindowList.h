#pragma once

#include "launcherapp/platform/WindowList.h"

#include <memory>

namespace tessarine {

/// The windows that an X11 window manager tells of (Extended Window Manager Hints 1.5), over a
/// connection of its own. Losing the display makes it unable, with the reason, and nothing worse.
/// Main thread only, with Qt's event loop.
class X11WindowList : public WindowList {
public:
    /// `gap` tells what windows there may be beside those of X11.
    explicit X11WindowList(std::optional<std::string> gap = std::nullopt);
    ~X11WindowList() override;
    X11WindowList(const X11WindowList&) = delete;
    X11WindowList& operator=(const X11WindowList&) = delete;

    Ability ability() const override;

    std::optional<std::string> gap() const override { return gap_; }

    std::vector<AppWindow> windows() const override;
    std::optional<AppWindow> active() const override;
    bool stillRuns(const AppWindow& window) const override;
    Subscription onActiveChanged(std::function<void()> changed) override;
    Subscription onListChanged(std::function<void()> changed) override;
    void unhide(std::uint64_t window) override;
    void activate(std::uint64_t window) override;

private:
    class Display;
    std::unique_ptr<Display> display_;
    std::optional<std::string> gap_;
};

} // namespace tessarine
