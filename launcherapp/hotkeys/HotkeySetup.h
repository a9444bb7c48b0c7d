#pragma once

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class Diagnostics;
class Prefs;
class RivalLaunchers;

/// Which chords the program's own parts get: those of the settings, and for the panel another one
/// while its own can't be had. Main thread only.
class HotkeySetup {
public:
    struct Services {
        Hotkey& hotkey;
        const RivalLaunchers& rivals;
        Prefs& prefs;
        Diagnostics& diagnostics;
    };

    /// What the chords do. An empty one gets no chord.
    struct Actions {
        std::function<void()> panel;
        std::function<void()> clipboard;
        std::function<void()> voice;
    };

    HotkeySetup(Services services, Actions actions);
    HotkeySetup(const HotkeySetup&) = delete;
    HotkeySetup& operator=(const HotkeySetup&) = delete;

    /// Takes the chords, and again whenever a setting of them changes. When the keyboard changes,
    /// those that were refused are asked for once more.
    void registerHotkey();

    /// Asks again for those chords of the settings that are not held now. What stands in for one
    /// is given up only for it.
    void retry();

    /// The other launcher that the panel's chord is left to, as nobody said that it is to be taken
    /// from it; nothing when the chord may be asked for, or was taken after all as there was no
    /// other.
    std::optional<std::string> chordIsLeftTo() const;

private:
    enum class Report { everything, changes };
    enum class Wanted { first, last };

    void registerPanel(Report report);
    void registerOptionals(Report report);
    std::vector<HotkeyBinding> panelChords(Wanted order) const;
    void resolveSwaps();
    std::optional<HotkeyBinding> wanted(std::uint32_t id) const;
    std::optional<std::string> rivalInTheWay() const;
    void retryPanel();
    void registerOptional(std::uint32_t id, const std::function<void()>& action, Report report);
    void settingChanged(std::string_view key);

    Services services_;
    Actions actions_;
    bool isTakenAfterAll_ = false; ///< from another launcher, as every other chord was held
    Subscription settings_;
    Subscription keys_;
};

} // namespace tessarine
