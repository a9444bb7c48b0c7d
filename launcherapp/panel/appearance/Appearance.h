#pragma once

#include "launcherapp/panel/appearance/Palette.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/shell/Prefs.h"

#include <functional>
#include <optional>

namespace tessarine {

class DesktopAppearance;
class Diagnostics;

/// Which palette holds now: the user's dark or light preset, as the settings say or as the desktop
/// has it. A preset of the wrong tone, as only an edit of the file can choose, counts for nothing
/// and is logged. Reads the settings and never writes them. Main thread only.
class Appearance {
public:
    /// Follows both from now on.
    Appearance(Prefs& prefs, DesktopAppearance& desktop, Diagnostics& diagnostics);
    Appearance(const Appearance&) = delete;
    Appearance& operator=(const Appearance&) = delete;

    AppearancePreset preset() const;

    /// That of the preset; the default ones wear the desktop's accent, where it tells one.
    const Palette& palette() const { return palette_; }

    /// Shows another preset for as long as it is set: for pictures alone, it is stored nowhere.
    void setOverride(std::optional<AppearancePreset> preset);

    /// Calls `changed` after each change of the palette.
    Subscription onChange(std::function<void()> changed);

private:
    AppearancePreset chosen(Palette::Tone tone) const;
    void check(Palette::Tone tone);
    Palette worn() const;
    void reconsider();

    const Prefs& prefs_;
    const DesktopAppearance& desktop_;
    Diagnostics& diagnostics_;
    std::optional<AppearancePreset> override_;
    AppearancePreset shown_;
    Palette palette_;
    Subscription prefsChanges_;
    Subscription desktopChanges_;
    Observers<> observers_;
};

} // namespace tessarine
