#include "launcherapp/catalog/StandInApps.h"

#include <algorithm>
#include <array>
#include <span>

namespace tessarine {

namespace {

struct StandIn {
    std::string_view bundleID;
    std::string_view mimeType; ///< whoever opens this takes the part; empty when none does
    std::span<const std::string_view> candidates;
};

// Desktop-file ids as the desktops' own packages install them, the larger desktops first; but KDE's
// settings last, as they alone run on every desktop.
constexpr auto settings = std::to_array<std::string_view>({
    "org.gnome.Settings",
    "gnome-control-center",
    "xfce-settings-manager",
    "cinnamon-settings",
    "matecc",
    "lxqt-config",
    "com.system76.CosmicSettings",
    "org.buddiesofbudgie.ControlCenter",
    "io.elementary.settings",
    "systemsettings",
    "kdesystemsettings",
});
// The panels that the desktops draw themselves: a dock beside one is not what is started anew.
constexpr auto docks = std::to_array<std::string_view>({
    "org.kde.plasmashell",
    "org.gnome.Shell",
    "xfce4-panel",
    "mate-panel",
    "lxqt-panel",
});
constexpr auto screenshots = std::to_array<std::string_view>({
    "org.gnome.Screenshot",
    "org.kde.spectacle",
    "org.flameshot.Flameshot",
    "xfce4-screenshooter",
    "mate-screenshot",
    "lximage-qt-screenshot",
    "com.system76.CosmicScreenshot",
});
constexpr auto calendars = std::to_array<std::string_view>({
    "org.gnome.Calendar",
    "org.kde.merkuro.calendar",
    "org.kde.korganizer",
    "org.gnome.Evolution",
});
constexpr auto dictionaries = std::to_array<std::string_view>({
    "org.gnome.Dictionary",
    "mate-dictionary",
    "xfce4-dict",
    "io.github.xiaoyifang.goldendict_ng",
    "goldendict",
});

constexpr auto table = std::to_array<StandIn>({
    {"com.apple.systempreferences", "", settings},
    {"com.apple.finder", "inode/directory", {}},
    {"com.apple.dock", "", docks},
    {"com.apple.screenshot.launcher", "", screenshots},
    {"com.apple.iCal", "text/calendar", calendars},
    {"com.apple.Dictionary", "", dictionaries},
});

} // namespace

const InstalledApp* StandInApps::application(const AppRegistry& registry,
                                             std::string_view bundleID) {
    if (const auto* installed = registry.byID(bundleID))
        return installed;
    const auto row = std::ranges::find(table, bundleID, &StandIn::bundleID);
    if (row == table.end())
        return nullptr;
    if (!row->mimeType.empty()) {
        if (const auto* handler = registry.handlerForType(row->mimeType))
            return handler;
    }
    const InstalledApp* unlisted = nullptr;
    for (const auto candidate : row->candidates) {
        const auto* installed = registry.byID(candidate);
        if (installed && installed->listed)
            return installed;
        if (installed && !unlisted)
            unlisted = installed;
    }
    return unlisted;
}

} // namespace tessarine
