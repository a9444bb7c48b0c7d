#include "launcherapp/clipboard/FrontApp.h"

#include "LauncherCore/text/Folding.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/RunningApps.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tessarine {

namespace {

/// Terminals that people start without a desktop entry, by the class of their windows.
constexpr auto terminalClasses = std::to_array<std::string_view>({"alacritty",
                                                                  "foot",
                                                                  "kitty",
                                                                  "konsole",
                                                                  "rxvt",
                                                                  "st",
                                                                  "st-256color",
                                                                  "terminator",
                                                                  "tilix",
                                                                  "urxvt",
                                                                  "wezterm",
                                                                  "org.wezfurlong.wezterm",
                                                                  "xterm"});

const InstalledApp*
appOf(const AppWindow& window, const RunningApps& running, const AppRegistry& registry) {
    const auto owner = running.owner(window);
    return owner ? registry.byID(*owner) : nullptr;
}

std::optional<std::string> nameOf(const AppWindow& window, const InstalledApp* app) {
    if (app && !app->name.empty())
        return app->name;
    return window.className.empty() ? std::nullopt : std::optional(window.className);
}

} // namespace

ClipSource
FrontApp::source(const WindowList& windows, const RunningApps& running, const AppCatalog& catalog) {
    const auto active = windows.active();
    if (!active)
        return {};
    const auto registry = catalog.registry();
    const auto* app = appOf(*active, running, *registry);
    return {.bundleID = app ? std::optional(app->bundleID) : std::nullopt,
            .name = nameOf(*active, app),
            .window = active};
}

bool FrontApp::hasEnded(const ClipSource& source, const WindowList& windows) {
    if (!source.window || !windows.ability().available)
        return false;
    const auto& window = *source.window;
    if (window.processID != 0 && !window.executable.empty())
        return !windows.stillRuns(window);
    const auto isItsOwn = [&](const AppWindow& each) {
        return each.id == window.id ||
               (!window.applicationID.empty() && each.applicationID == window.applicationID) ||
               (!window.className.empty() && each.className == window.className);
    };
    return std::ranges::none_of(windows.windows(), isItsOwn);
}

ClipboardPaster::Target
FrontApp::target(const AppWindow& window, const RunningApps& running, const AppCatalog& catalog) {
    const auto registry = catalog.registry();
    const auto* app = appOf(window, running, *registry);
    const auto isTerminal =
        app ? app->terminalEmulator
            : std::ranges::count(terminalClasses, Folding::lowercase(window.className)) > 0;
    return {.name = nameOf(window, app), .isTerminal = isTerminal};
}

} // namespace tessarine
