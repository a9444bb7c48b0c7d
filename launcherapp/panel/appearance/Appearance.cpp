#include "launcherapp/panel/appearance/Appearance.h"

#include "launcherapp/platform/DesktopAppearance.h"

#include <string_view>
#include <utility>

namespace tessarine {

Appearance::Appearance(Prefs& prefs, DesktopAppearance& desktop)
    : prefs_(prefs), desktop_(desktop), shown_(preset()),
      prefsChanges_(prefs.onChange([this](std::string_view key) {
          if (key == prefs_.preset.key() || key == prefs_.lightPreset.key() ||
              key == prefs_.mode.key())
              reconsider();
      })),
      desktopChanges_(desktop.onChange([this] { reconsider(); })) {}

AppearancePreset Appearance::preset() const {
    if (override_)
        return *override_;
    switch (prefs_.mode()) {
    case AppearanceMode::dark:
        return prefs_.preset();
    case AppearanceMode::light:
        return prefs_.lightPreset();
    case AppearanceMode::automatic:
        break;
    }
    // A desktop that prefers neither looks light, as its own programs do.
    return desktop_.colorScheme() == ColorScheme::dark ? prefs_.preset() : prefs_.lightPreset();
}

void Appearance::setOverride(std::optional<AppearancePreset> preset) {
    override_ = preset;
    reconsider();
}

Subscription Appearance::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

void Appearance::reconsider() {
    if (std::exchange(shown_, preset()) != preset())
        observers_.tell();
}

} // namespace tessarine
