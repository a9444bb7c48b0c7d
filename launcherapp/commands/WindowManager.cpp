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
#include <cstdint>
#include <tuple>
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

bool shareProcess(const RunningApp& one, const RunningApp& other) {
    return std::ranges::any_of(one.processes, [&](std::int64_t process) {
        return std::ranges::count(other.processes, process) > 0;
    });
}

} // namespace

Ability WindowManager::ability(const std::optional<AppWindow>& target) const {
    auto can = services_.control.ability();
    const auto gap = target ? std::nullopt : services_.windows.gap();
    if (can.available && gap)
        return Ability::missing("the front window isn't told: " + *gap);
    return can;
}

bool WindowManager::apply(WindowVerb verb, const std::optional<AppWindow>& target) {
    requireMainThread(services_.queue);
    auto& control = services_.control;
    auto& diagnostics = services_.diagnostics;
    if (!ability(target).available) {
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
    if (!before) {
        diagnostics.log(fmt::format("window: {} reported no window", name));
        return false;
    }
    const auto screens = control.screens();
    if (screens.empty()) {
        diagnostics.log(fmt::format("window: {} found no screen", WindowVerbs::name(verb)));
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
    if (!control.frame(window->id)) { // gone meanwhile, or the desktop answers no more
        diagnostics.log(
            fmt::format("window: {} was not seen to reach {}", WindowVerbs::name(verb), name));
        return false;
    }
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
    auto& windows = services_.windows;
    if (target) {
        if (auto window = windowOfApplication(*target))
            return window;
        // Its number may be another program's by now.
        if (auto none = *target; windows.stillRuns(none)) {
            none.ordinary = false;
            return none;
        }
    }
    // The panel has just gone, and where it is a window like others it may still be told of.
    auto front = windows.active();
    return front && front->own ? std::nullopt : front;
}

/// The recorded one, else the best of the same application; one that can't be moved where it has
/// no others.
std::optional<AppWindow> WindowManager::windowOfApplication(const AppWindow& recorded) const {
    const auto owner = services_.running.owner(recorded);
    const auto isOfIt = [&](const AppWindow& window) {
        const auto other = owner ? services_.running.owner(window) : std::nullopt;
        // Several applications may share a process.
        return other ? other == owner
                     : recorded.processID != 0 && window.processID == recorded.processID;
    };
    const auto rank = [&](const AppWindow& window) {
        const bool isRecorded = window.id == recorded.id && window.processID == recorded.processID;
        if (window.own || !(isRecorded || isOfIt(window)))
            return 0;
        if (!window.ordinary)
            return 1;
        if (isRecorded)
            return 4;
        return window.hidden ? 2 : 3;
    };
    std::optional<AppWindow> best;
    int bestRank = 1;
    for (const auto& window : services_.windows.windows()) {
        if (const int found = rank(window); found >= bestRank) {
            best = window;
            bestRank = found;
        }
    }
    return best;
}

std::string WindowManager::nameOf(const AppWindow& window) const {
    const auto owner = services_.running.owner(window);
    const auto* app = owner ? services_.catalog.registry()->byID(*owner) : nullptr;
    if (app && !app->name.empty())
        return app->name;
    return window.className.empty() ? "app" : window.className;
}

std::vector<QuittableApp> WindowManager::runningApps(std::string_view query,
                                                     Certainty certainty) const {
    const auto wanted = Folding::lowercase(query);
    const auto& registry = *services_.catalog.registry();
    const auto named = [&](const std::string& bundleID) {
        const auto* app = registry.byID(bundleID);
        return app ? app->name : bundleID;
    };
    const auto all = services_.running.running();
    std::vector<QuittableApp> apps;
    for (const auto& app : services_.running.running(certainty)) {
        const auto* installed = registry.byID(app.bundleID);
        // Those that are not listed are parts of the desktop. This program has a row of its own
        // that ends it.
        if (!installed || !installed->listed || app.bundleID == ProductInfo::bundleID)
            continue;
        if (Folding::lowercase(installed->name).find(wanted) == std::string::npos)
            continue;
        QuittableApp found{.name = installed->name, .bundleID = app.bundleID};
        for (const auto& other : all) {
            if (other.bundleID != app.bundleID && shareProcess(app, other))
                found.alsoEnds.push_back(named(other.bundleID));
        }
        apps.push_back(std::move(found));
    }
    std::ranges::sort(
        apps, {}, [](const QuittableApp& app) { return std::tie(app.name, app.bundleID); });
    return apps;
}

const WindowManager::Offer& WindowManager::offer() {
    const auto now = services_.queue.uptime();
    if (!offeredAt_ || now - *offeredAt_ >= AppCatalog::runningLifetime) {
        offeredAt_ = now;
        offer_ = {.ability = services_.running.ability(),
                  .killing = services_.control.killing(),
                  .apps = runningApps("")};
    }
    return offer_;
}

void WindowManager::quit(const QuittableApp& app, Force force, Certainty certainty) {
    requireMainThread(services_.queue);
    auto& diagnostics = services_.diagnostics;
    const auto name = app.name.empty() ? "app" : app.name;
    diagnostics.log(
        fmt::format("window: {} {}", force == Force::yes ? "force-quit" : "quit", name));
    offeredAt_.reset();
    // Asked anew: the numbers of windows that have gone since are given to other programs' windows.
    const auto running =
        services_.running.running(app.bundleID, force == Force::yes ? Certainty::sure : certainty);
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
