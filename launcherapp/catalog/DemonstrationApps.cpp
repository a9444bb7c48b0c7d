#include "launcherapp/catalog/DemonstrationApps.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace tessarine {

namespace {

struct Invented {
    std::string_view name;
    std::string_view id;
    std::string_view alias;
    std::string_view icon;   ///< of the desktop's icon naming standard, or widely drawn
    std::string_view symbol; ///< our own, where no theme draws it
    bool isRunning = false;
};

constexpr auto invented = std::to_array<Invented>({
    {"Almanac", "demo.tessarine.Almanac", "Calendar", "office-calendar", "calendar"},
    {"Bluebird Mail", "demo.tessarine.BluebirdMail", "Email", "internet-mail", "envelope", true},
    {"Campfire Stories", "demo.tessarine.Campfire", "Podcasts", "audio-input-microphone", "mic"},
    {"Darkroom", "demo.tessarine.Darkroom", "Photos", "camera-photo", "camera"},
    {"Fieldnotes", "demo.tessarine.Fieldnotes", "Notes", "accessories-text-editor", "pencil"},
    {"Firewheel", "demo.tessarine.Firewheel", "Web Browser", "web-browser", "globe", true},
    {"Gramophone",
     "demo.tessarine.Gramophone",
     "Music Player",
     "multimedia-player",
     "music.note",
     true},
    {"Harbour Files", "demo.tessarine.Harbour", "File Manager", "system-file-manager", "folder"},
    {"Ledgerline", "demo.tessarine.Ledgerline", "Spreadsheet", "x-office-spreadsheet", "chart.bar"},
    {"Night Sky", "demo.tessarine.NightSky", "Planetarium", "weather-clear-night", "moon"},
    {"Paper Crane", "demo.tessarine.PaperCrane", "Word Processor", "x-office-document", "doc.text"},
    {"Switchboard",
     "demo.tessarine.Switchboard",
     "Settings",
     "preferences-system",
     "slider.horizontal.3"},
    {"Teletype", "demo.tessarine.Teletype", "Terminal", "utilities-terminal", "terminal", true},
});

/// Below a folder that exists nowhere, so that nothing real is ever started or remembered.
std::string pathOf(const Invented& app) {
    return "/demo/applications/" + std::string(app.id) + ".desktop";
}

} // namespace

std::vector<CatalogApp> demonstrationApps() {
    std::vector<CatalogApp> apps;
    for (const auto& app : invented) {
        const auto path = pathOf(app);
        apps.push_back({.id = path,
                        .name = std::string(app.name),
                        .path = path,
                        .bundleID = std::string(app.id),
                        .aliases = {std::string(app.alias)}});
    }
    return apps;
}

std::shared_ptr<const AppRegistry> demonstrationRegistry() {
    std::vector<InstalledApp> apps;
    apps.reserve(invented.size());
    for (const auto& app : invented) {
        apps.push_back({.bundleID = std::string(app.id),
                        .path = pathOf(app),
                        .name = std::string(app.name),
                        .aliases = {std::string(app.alias)},
                        .listed = true,
                        .icon = std::string(app.icon)});
    }
    return std::make_shared<const AppRegistry>(std::move(apps), MimeApps{});
}

std::string_view demonstrationSymbol(const CatalogApp& app) {
    const auto* const found =
        std::ranges::find_if(invented, [&](const auto& one) { return one.id == app.bundleID; });
    return found == invented.end() ? std::string_view() : found->symbol;
}

std::vector<AppWindow> DemonstrationWindows::windows() const {
    std::vector<AppWindow> windows;
    std::uint64_t id = 0;
    for (const auto& app : invented) {
        if (app.isRunning && !ended_.contains(++id))
            windows.push_back({.id = id, .applicationID = std::string(app.id)});
    }
    return windows;
}

} // namespace tessarine
