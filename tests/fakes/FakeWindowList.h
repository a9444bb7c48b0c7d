#pragma once

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/WindowList.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace tessarine {

/// A desktop whose windows a test opens, brings forward and minimises.
class FakeWindowList : public WindowList {
public:
    Ability ability() const override { return supported; }

    std::optional<std::string> gap() const override { return untold; }

    std::vector<AppWindow> windows() const override {
        ++listings;
        return open;
    }

    std::optional<AppWindow> active() const override {
        const auto found = std::ranges::find(open, activeID, &AppWindow::id);
        return found == open.end() ? std::nullopt : std::optional(*found);
    }

    bool stillRuns(const AppWindow& window) const override {
        return programs.contains(window.processID);
    }

    Subscription onActiveChanged(std::function<void()> changed) override {
        const int id = ++lastObserver_;
        observers_.emplace(id, std::move(changed));
        return Subscription([this, id] { observers_.erase(id); });
    }

    Subscription onListChanged(std::function<void()> changed) override {
        return listObservers_.add(std::move(changed));
    }

    void unhide(std::uint64_t window) override {
        calls.emplace_back("unhide", window);
        for (auto& each : open) {
            if (each.id == window)
                each.hidden = false;
        }
    }

    void activate(std::uint64_t window) override {
        calls.emplace_back("activate", window);
        bringForward(window);
    }

    /// As the user would by a click.
    void bringForward(std::uint64_t window) {
        activeID = window;
        const auto observers = observers_;
        for (const auto& [id, changed] : observers)
            changed();
    }

    /// As its program would.
    void close(std::uint64_t window) {
        std::erase_if(open, [&](const AppWindow& each) { return each.id == window; });
        listObservers_.tell();
    }

    Ability supported;
    std::optional<std::string> untold;
    std::set<std::int64_t> programs; ///< processes that run, with or without windows
    std::vector<AppWindow> open;     ///< oldest first
    std::uint64_t activeID = 0;      ///< 0: none
    std::vector<std::pair<std::string, std::uint64_t>> calls;
    mutable int listings = 0; ///< how often the windows were asked for

private:
    Observers<> listObservers_;
    int lastObserver_ = 0;
    std::map<int, std::function<void()>> observers_;
};

} // namespace tessarine
