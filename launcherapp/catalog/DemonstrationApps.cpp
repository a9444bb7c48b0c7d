#include "launcherapp/catalog/DemonstrationApps.h"

#include <array>
#include <string>
#include <string_view>

namespace tessarine {

namespace {

struct Invented {
    std::string_view name;
    std::string_view id;
    std::string_view alias;
};

constexpr auto invented = std::to_array<Invented>({
    {"Almanac", "demo.tessarine.Almanac", "Calendar"},
    {"Bluebird Mail", "demo.tessarine.BluebirdMail", "Email"},
    {"Campfire Stories", "demo.tessarine.Campfire", "Podcasts"},
    {"Darkroom", "demo.tessarine.Darkroom", "Photos"},
    {"Fieldnotes", "demo.tessarine.Fieldnotes", "Notes"},
    {"Firewheel", "demo.tessarine.Firewheel", "Web Browser"},
    {"Gramophone", "demo.tessarine.Gramophone", "Music Player"},
    {"Harbour Files", "demo.tessarine.Harbour", "File Manager"},
    {"Ledgerline", "demo.tessarine.Ledgerline", "Spreadsheet"},
    {"Night Sky", "demo.tessarine.NightSky", "Planetarium"},
    {"Paper Crane", "demo.tessarine.PaperCrane", "Word Processor"},
    {"Switchboard", "demo.tessarine.Switchboard", "Settings"},
    {"Teletype", "demo.tessarine.Teletype", "Terminal"},
});

} // namespace

std::vector<CatalogApp> demonstrationApps() {
    std::vector<CatalogApp> apps;
    for (const auto& [name, id, alias] : invented) {
        // Below a folder that exists nowhere, so that nothing real is ever started or remembered.
        const auto path = "/demo/applications/" + std::string(id) + ".desktop";
        apps.push_back({.id = path,
                        .name = std::string(name),
                        .path = path,
                        .bundleID = std::string(id),
                        .aliases = {std::string(alias)}});
    }
    return apps;
}

} // namespace tessarine
