#include "launcherapp/commands/WindowManager.h"

#include "LauncherCore/text/Folding.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <ranges>
#include <utility>

namespace tessarine {

namespace {

/// The screen on which the window is: the one that holds its top left, else the main one.
std::size_t screenOf(const Rectangle& window, const std::vector<Screen>& screens) {
    const auto holds = [&](const Screen& screen) {
        return screen.frame.contains({.x = window.x, .y = window.y});
    };
    auto found = std::ranges::find_if(screens, holds);
    if (found == screens.end())
        found = std::ranges::find(screens, true, &Screen::isMain);
    return found == screens.end() ? 0 : static_cast<std::size_t>(found - screens.begin());
}

} // namespace

bool WindowManager::apply(WindowVerb verb, const std::optional<AppWindow>& target) {
    auto& [control, windows, running, catalog, diagnostics] = services_;
    if (!control.ability().available) {
        diagnostics.log(fmt::format("window: {} needs Accessibility", WindowVerbs::name(verb)));
        return false;
    }
    const auto window = chosen(target);
    if (!window) {
        diagnostics.log("window: no target app");
        return false;
    }
    const auto name = nameOf(*window);
    const auto before = window->ordinary ? control.frame(window->id) : std::nullopt;
    const auto screens = before ? control.screens() : std::vector<Screen>{};
    if (screens.empty()) {
        diagnostics.log(fmt::format("window: {} reported no window", name));
        return false;
    }
    auto screen = screenOf(*before, screens);
    if (verb == WindowVerb::display)
        screen = (screen + 1) % screens.size();

    // A maximised window's own size is the one it comes back to.
    control.restore(window->id);
    const auto frame = WindowVerbs::frame(
        verb, screens[screen].workArea, control.frame(window->id).value_or(*before));
    // A window may have no room for its new size where it is, and is asked again once it has moved.
    control.resize(window->id, frame.width, frame.height);
    control.move(window->id, {.x = frame.x, .y = frame.y});
    control.resize(window->id, frame.width, frame.height);
    diagnostics.log(fmt::format("window: {} -> {} at {},{} {}x{} on {}",
                                WindowVerbs::name(verb),
                                name,
                                std::lround(frame.x),
                                std::lround(frame.y),
                                std::lround(frame.width),
                                std::lround(frame.height),
                                screens[screen].name));
    return true;
}

/// Which window a verb is for; it may be one that can't be moved, as the desktop is.
std::optional<AppWindow> WindowManager::chosen(const std::optional<AppWindow>& target) const {
    if (target) {
        const auto windows = services_.windows.windows();
        const auto same = std::ranges::find(windows, target->id, &AppWindow::id);
        if (same != windows.end() && same->ordinary)
            return *same;
        if (auto other = newestOfApplication(*target, windows))
            return other;
        if (same != windows.end())
            return *same;
    }
    return services_.windows.active();
}

std::optional<AppWindow>
WindowManager::newestOfApplication(const AppWindow& gone,
                                   const std::vector<AppWindow>& windows) const {
    const auto owner = services_.running.owner(gone);
    const auto isOfIt = [&](const AppWindow& window) {
        if (!window.ordinary || window.hidden)
            return false;
        return (gone.processID != 0 && window.processID == gone.processID) ||
               (owner && services_.running.owner(window) == owner);
    };
    const auto newestFirst = windows | std::views::reverse;
    const auto found = std::ranges::find_if(newestFirst, isOfIt);
    return found == newestFirst.end() ? std::nullopt : std::optional(*found);
}

std::string WindowManager::nameOf(const AppWindow& window) const {
    const auto owner = services_.running.owner(window);
    const auto* app = owner ? services_.catalog.registry()->byID(*owner) : nullptr;
    if (app && !app->name.empty())
        return app->name;
    return window.className.empty() ? "app" : window.className;
}

std::vector<QuittableApp> WindowManager::runningApps(std::string_view query) const {
    const auto wanted = Folding::lowercase(query);
    const auto& registry = *services_.catalog.registry();
    std::vector<QuittableApp> apps;
    for (const auto& app : services_.running.running()) {
        const auto* installed = registry.byID(app.bundleID);
        // This program has a row of its own that ends it.
        if (!installed || app.bundleID == ProductInfo::bundleID)
            continue;
        if (Folding::lowercase(installed->name).find(wanted) != std::string::npos)
            apps.push_back({.name = installed->name, .bundleID = app.bundleID});
    }
    std::ranges::sort(apps, {}, &QuittableApp::name);
    return apps;
}

void WindowManager::quit(const QuittableApp& app, Force force) {
    auto& diagnostics = services_.diagnostics;
    const auto name = app.name.empty() ? "app" : app.name;
    diagnostics.log(
        fmt::format("window: {} {}", force == Force::yes ? "force-quit" : "quit", name));
    // Asked anew: the numbers of windows that have gone since are given to other programs' windows.
    const auto running = services_.running.running(app.bundleID);
    if (!running)
        return;
    bool ended = false;
    for (const auto window : running->windows) {
        if (force == Force::no)
            services_.control.close(window);
        else
            ended = services_.control.kill(window) || ended;
    }
    if (force == Force::yes && !ended)
        diagnostics.log(fmt::format("window: {} can't be ended", name));
}

} // namespace tessarine
