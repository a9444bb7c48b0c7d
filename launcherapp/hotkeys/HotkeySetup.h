#pragma once

#include "launcherapp/hotkeys/Hotkey.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <optional>
#include <string>

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

    /// Stands in for a chord of the panel's that can't be had.
    static const HotkeyBinding fallback;

    HotkeySetup(Services services, Actions actions);
    HotkeySetup(const HotkeySetup&) = delete;
    HotkeySetup& operator=(const HotkeySetup&) = delete;

    /// Takes the chords. From then on it is done again when a setting of them changes.
    void registerHotkey();

    /// Asks again for those chords of the settings that are not held now.
    void retry();

    /// The other launcher that the panel's chord is left to, as nobody said that it is to be taken
    /// from it; nothing when the chord may be asked for.
    std::optional<std::string> chordIsLeftTo() const;

private:
    enum class Report { everything, changes };

    void registerPanel(Report report);
    void registerOptional(std::uint32_t id,
                          const HotkeyBinding& binding,
                          std::function<void()> action,
                          Report report);
    void settingChanged(std::string_view key);

    Services services_;
    Actions actions_;
    Subscription settings_;
};

} // namespace tessarine
