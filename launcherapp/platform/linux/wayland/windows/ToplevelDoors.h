#pragma once

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/WindowList.h"
#include "launcherapp/platform/linux/desktop/NoWindowControl.h"
#include "launcherapp/platform/linux/wayland/windows/ForeignToplevels.h"

#include <memory>
#include <utility>

namespace tessarine {

/// The windows that a compositor tells task bars. Their processes are not told, so none is known to
/// still run. Main thread only.
class ToplevelWindowList : public WindowList {
public:
    explicit ToplevelWindowList(std::shared_ptr<ForeignToplevels> toplevels)
        : toplevels_(std::move(toplevels)) {}

    Ability ability() const override { return toplevels_->ability(); }

    std::optional<std::string> gap() const override { return std::nullopt; }

    std::vector<AppWindow> windows() const override { return toplevels_->windows(); }

    std::optional<AppWindow> active() const override { return toplevels_->active(); }

    bool stillRuns(const AppWindow&) const override { return false; }

    Subscription onActiveChanged(std::function<void()> changed) override {
        return toplevels_->activeChange.add(std::move(changed));
    }

    Subscription onListChanged(std::function<void()> changed) override {
        return toplevels_->listChange.add(std::move(changed));
    }

    void unhide(std::uint64_t window) override { toplevels_->unhide(window); }

    void activate(std::uint64_t window) override { toplevels_->activate(window); }

private:
    std::shared_ptr<ForeignToplevels> toplevels_;
};

/// The same windows can be closed, and neither moved nor killed. Main thread only.
class ToplevelWindowControl : public NoWindowControl {
public:
    explicit ToplevelWindowControl(std::shared_ptr<ForeignToplevels> toplevels)
        : NoWindowControl(std::string(DesktopTable::windowsStay)),
          toplevels_(std::move(toplevels)) {}

    void close(std::uint64_t window) override { toplevels_->close(window); }

    Ability killing() const override {
        return Ability::missing("this Wayland compositor doesn't tell whose process a window is");
    }

private:
    std::shared_ptr<ForeignToplevels> toplevels_;
};

} // namespace tessarine
