#pragma once

#include "LauncherCore/answers/TimeZones.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class MainQueue;
class Prefs;

/// Whose clocks answer a question about time: home, where the computer is, and the watched ones.
/// Main thread only. A question reads what the last `reload` found, so a keystroke touches no file.
class ZoneStore {
public:
    /// Another program's list of clocks would be followed; that program doesn't exist here.
    static constexpr bool perchbarInstalled = false;

    /// Where the user's home is kept, as an IANA zone.
    struct StoredHome {
        std::function<std::string()> read; ///< empty for a user who has none yet
        std::function<void(const std::string& identifier)> write;
    };

    /// `currentZone` gives the IANA zone where the computer is; it may read files.
    ZoneStore(MainQueue& queue,
              Prefs& prefs,
              StoredHome storedHome,
              std::function<std::string()> currentZone);

    /// Reads everything now, and again every minute: a traveller's computer changes its zone. The
    /// first start makes the zone of that day the home.
    void start();

    /// Also called by a change of the settings that it depends on.
    void reload();

    /// The watched clocks, home first.
    const std::vector<ZoneClock>& clocks() const { return clocks_; }

    /// Where the list comes from, for the settings.
    std::string_view sourceText() const { return sourceText_; }

    /// Where the computer is.
    const ZoneClock& here() const { return here_; }

    /// What `TimeZones` answers by; `now` in seconds since 1970.
    TimeZones::Context context(double now) const;

private:
    void readHome();
    void readClocks();

    MainQueue& queue_;
    Prefs& prefs_;
    StoredHome storedHome_;
    std::function<std::string()> currentZone_;
    std::vector<ZoneClock> clocks_;
    std::string_view sourceText_;
    ZoneClock home_; ///< the stored one, whether or not home follows the computer
    ZoneClock here_;
    Subscription timer_;
    Subscription settings_;
};

} // namespace tessarine
