#include "launcherapp/shell/DesktopKey.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

struct Way {
    std::string_view desktop; ///< of XDG_CURRENT_DESKTOP
    std::string_view where;
    std::string_view line; ///< with "{}" for the command
};

constexpr auto ways = std::to_array<Way>({
    {"sway",
     "put this line into ~/.config/sway/config and reload it",
     "bindsym Mod4+space exec {}"},
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
           (desktop == "Hyprland" && surroundings.hasHyprland);
}

} // namespace

std::string DesktopKeys::command(std::string_view action) {
    return fmt::format("gapplication action {} {}", ProductInfo::bundleID, action);
}

DesktopKey DesktopKeys::forPanel(const DesktopSurroundings& surroundings) {
    const auto known = std::ranges::find_if(
        ways, [&](const Way& way) { return isRunning(surroundings, way.desktop); });
    const auto& way = known == ways.end() ? anyDesktop : *known;
    return {.where = std::string(way.where),
            .line = fmt::format(fmt::runtime(way.line), command("toggle"))};
}

std::string DesktopKeys::advice(const DesktopKey& key) {
    return fmt::format("{}:\n    {}", key.where, key.line);
}

} // namespace tessarine
