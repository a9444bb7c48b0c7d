#include "launcherapp/sources/ZoneStore.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Zone.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/Prefs.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr Seconds reloadInterval{60};
constexpr Seconds reloadTolerance{30};

std::vector<ZoneClock> builtInClocks() {
    std::vector<ZoneClock> clocks;
    for (const auto& row : Tables::rows("clocks"))
        clocks.push_back({.name = std::string(row[0]), .identifier = std::string(row[1])});
    return clocks;
}

ZoneClock clockOf(const std::string& identifier) {
    return {.name = TimeZones::cityName(identifier), .identifier = identifier};
}

} // namespace

ZoneStore::ZoneStore(MainQueue& queue,
                     Prefs& prefs,
                     StoredHome storedHome,
                     std::function<std::string()> currentZone)
    : queue_(queue), prefs_(prefs), storedHome_(std::move(storedHome)),
      currentZone_(std::move(currentZone)) {
    settings_ = prefs_.onChange([this](std::string_view key) {
        if (key == prefs_.zonesFollowPerchbar.key() || key == prefs_.timeHomeFollowsMac.key())
            reload();
    });
}

void ZoneStore::start() {
    requireMainThread(queue_);
    reload();
    timer_ = queue_.every(reloadInterval, reloadTolerance, [this] { reload(); });
}

void ZoneStore::reload() {
    requireMainThread(queue_);
    here_ = clockOf(currentZone_());
    readHome();
    readClocks();
}

void ZoneStore::readHome() {
    const auto stored = storedHome_.read();
    if (Zone::named(stored)) {
        home_ = clockOf(stored);
        return;
    }
    if (!home_.identifier.empty())
        return;
    home_ = here_;
    storedHome_.write(here_.identifier);
}

void ZoneStore::readClocks() {
    clocks_ = builtInClocks();
    sourceText_ = prefs_.zonesFollowPerchbar()
                      ? "Perchbar's built-in list (Perchbar is not installed)"
                      : "Tessarine's copy of Perchbar's built-in list";
    // Nobody chose that list, so a user's own city may be missing from it, and home is to be the
    // first of the clocks.
    auto& home = prefs_.timeHomeFollowsMac() ? here_ : home_;
    const auto own = std::ranges::find(clocks_, home.identifier, &ZoneClock::identifier);
    if (own == clocks_.end()) {
        clocks_.insert(clocks_.begin(), home);
        return;
    }
    home = *own;
    std::rotate(clocks_.begin(), own, own + 1);
}

TimeZones::Context ZoneStore::context(double now) const {
    return {.home = prefs_.timeHomeFollowsMac() ? here_ : home_,
            .here = here_,
            .primary = clocks_,
            .now = now};
}

} // namespace tessarine
