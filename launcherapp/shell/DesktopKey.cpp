#include "launcherapp/shell/DesktopKey.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

struct Way {
    std::string_view desktop; ///< of XDG_CURRENT_DESKTOP
    std::string_view where;   ///< with "{}" for sway's file
    std::string_view line;    ///< with "{}" for the command
};

constexpr auto ways = std::to_array<Way>({
    // The configuration that sway comes with binds that key, and of two lines the later counts.
    {"sway",
     "put this line at the end of {} and reload it",
     "bindsym --no-warn Mod4+space exec {}"},
    {"Hyprland",
     "put this line into ~/.config/hypr/hyprland.conf",
     "bind = SUPER, SPACE, exec, {}"},
    {"river",
     "put this line into ~/.config/river/init and log in again",
     "riverctl map normal Super Space spawn '{}'"},
    // GNOME gives Super+Space to the next layout.
    {"GNOME",
     "add a custom shortcut in Settings > Keyboard > View and Customize Shortcuts, with a key that "
     "is free and this command",
     "{}"},
    {"KDE", "add a command in System Settings > Shortcuts, with this command", "{}"},
});

constexpr Way anyDesktop{
    "",
    "bind a key of your desktop's, in its settings or its configuration, to this command",
    "{}"};

bool isRunning(const DesktopSurroundings& surroundings, std::string_view desktop) {
    return std::ranges::count(surroundings.desktops, desktop) > 0 ||
           (desktop == "sway" && surroundings.hasSway) ||
           (desktop == "Hyprland" && surroundings.hasHyprland) ||
           (desktop == "river" && surroundings.globals.contains("zriver_control_v1")) ||
           (desktop == "river" && surroundings.globals.contains("zriver_status_manager_v1"));
}

const Way* wayOn(const DesktopSurroundings& surroundings) {
    const auto known = std::ranges::find_if(
        ways, [&](const Way& way) { return isRunning(surroundings, way.desktop); });
    return known == ways.end() ? nullptr : &*known;
}

/// What must be there before the key can be made.
std::string preparation(const Way& way, const DesktopSurroundings& surroundings) {
    std::string text;
    if (surroundings.lacksGapplication)
        text += "install the package libglib2.0-bin, which has gapplication, and ";
    // Without a file of the user's own sway reads the one that it comes with, and never both.
    if (way.desktop == "sway" && !surroundings.hasSwayConfig)
        text += fmt::format("copy /etc/sway/config to {}, ", surroundings.swayConfig);
    return text;
}

} // namespace

std::string DesktopKeys::command(std::string_view action) {
    return fmt::format("gapplication action {} {}", ProductInfo::bundleID, action);
}

std::optional<DesktopKey> DesktopKeys::forPanel(const DesktopSurroundings& surroundings) {
    if (!surroundings.hasSessionBus)
        return std::nullopt;
    const auto* const known = wayOn(surroundings);
    const auto& way = known ? *known : anyDesktop;
    return DesktopKey{.where = preparation(way, surroundings) +
                               fmt::format(fmt::runtime(way.where), surroundings.swayConfig),
                      .line = fmt::format(fmt::runtime(way.line), command("toggle"))};
}

std::string DesktopKeys::desktop(const DesktopSurroundings& surroundings) {
    const auto* const known = wayOn(surroundings);
    return known ? std::string(known->desktop)
                 : fmt::format("{}", fmt::join(surroundings.desktops, ":"));
}

std::string DesktopKeys::advice(const DesktopKey& key) {
    return fmt::format("{}:\n    {}", key.where, key.line);
}

} // namespace tessarine
