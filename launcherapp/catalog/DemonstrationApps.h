#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/catalog/CatalogApp.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/platform/WindowList.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Invented applications for pictures and trials, in alphabetical order. Pure; any thread.
std::vector<CatalogApp> demonstrationApps();

/// What is known of them besides: their icons are names that every icon theme may have. None can
/// be started. Pure; any thread.
std::shared_ptr<const AppRegistry> demonstrationRegistry();

/// The symbol of the program's own that stands for such an application where the theme has no
/// icon of it; empty for any other application. Pure; any thread.
std::string_view demonstrationSymbol(const CatalogApp& app);

/// Windows of some of these applications, as if they were running, until they are ended. Which
/// window is active, and when that changes, is the desktop's own. Main thread only.
class DemonstrationWindows : public WindowList {
public:
    explicit DemonstrationWindows(WindowList& desktop) : desktop_(desktop) {}

    Ability ability() const override { return {}; }

    std::vector<AppWindow> windows() const override;

    std::optional<std::string> gap() const override { return std::nullopt; }

    std::optional<AppWindow> active() const override { return desktop_.active(); }

    bool stillRuns(const AppWindow& window) const override { return desktop_.stillRuns(window); }

    Subscription onActiveChanged(std::function<void()> changed) override {
        return desktop_.onActiveChanged(std::move(changed));
    }

    Subscription onListChanged(std::function<void()> changed) override {
        return ends_.add(std::move(changed));
    }

    void unhide(std::uint64_t) override {}

    void activate(std::uint64_t) override {}

    /// The window is there no more.
    void end(std::uint64_t window) {
        ended_.insert(window);
        ends_.tell();
    }

private:
    WindowList& desktop_;
    std::set<std::uint64_t> ended_;
    Observers<> ends_;
};

/// Moves no window, and ends only the demonstration's own. Main thread only.
class DemonstrationControl : public WindowControl {
public:
    explicit DemonstrationControl(DemonstrationWindows& windows) : windows_(windows) {}

    Ability ability() const override {
        return Ability::missing("a demonstration moves no windows");
    }

    std::vector<Screen> screens() const override { return {}; }

    std::optional<Rectangle> frame(std::uint64_t) const override { return std::nullopt; }

    void restore(std::uint64_t) override {}

    void resize(std::uint64_t, double, double) override {}

    void move(std::uint64_t, const Point&) override {}

    void close(std::uint64_t window) override { windows_.end(window); }

    bool kill(std::uint64_t window) override {
        windows_.end(window);
        return true;
    }

private:
    DemonstrationWindows& windows_;
};

} // namespace tessarine
