#include "launcherapp/panel/appearance/Appearance.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/DesktopAppearance.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace tessarine {

namespace {

bool isOf(Palette::Tone tone, AppearancePreset preset) {
    return Palettes::palette(preset).tone == tone;
}

} // namespace

Appearance::Appearance(Prefs& prefs, DesktopAppearance& desktop, Diagnostics& diagnostics)
    : prefs_(prefs), desktop_(desktop), diagnostics_(diagnostics), shown_(preset()),
      palette_(worn()), prefsChanges_(prefs.onChange([this](std::string_view key) {
          if (key == prefs_.preset.key())
              check(Palette::Tone::dark);
          if (key == prefs_.lightPreset.key())
              check(Palette::Tone::light);
          if (key == prefs_.preset.key() || key == prefs_.lightPreset.key() ||
              key == prefs_.mode.key())
              reconsider();
      })),
      desktopChanges_(desktop.onChange([this] { reconsider(); })) {
    check(Palette::Tone::dark);
    check(Palette::Tone::light);
}

AppearancePreset Appearance::preset() const {
    if (override_)
        return *override_;
    switch (prefs_.mode()) {
    case AppearanceMode::dark:
        return chosen(Palette::Tone::dark);
    case AppearanceMode::light:
        return chosen(Palette::Tone::light);
    case AppearanceMode::automatic:
        break;
    }
    // A desktop that prefers neither looks light, as its own programs do.
    return chosen(desktop_.colorScheme() == ColorScheme::dark ? Palette::Tone::dark
                                                              : Palette::Tone::light);
}

AppearancePreset Appearance::chosen(Palette::Tone tone) const {
    const auto& setting = tone == Palette::Tone::dark ? prefs_.preset : prefs_.lightPreset;
    return isOf(tone, setting()) ? setting() : setting.byDefault();
}

void Appearance::check(Palette::Tone tone) {
    const bool isDark = tone == Palette::Tone::dark;
    const auto& setting = isDark ? prefs_.preset : prefs_.lightPreset;
    if (!isOf(tone, setting()))
        diagnostics_.log(fmt::format("appearance: {} is no {} preset; {} stands for it",
                                     Palettes::name(setting()),
                                     isDark ? "dark" : "light",
                                     Palettes::name(setting.byDefault())));
}

void Appearance::setOverride(std::optional<AppearancePreset> preset) {
    override_ = preset;
    reconsider();
}

Subscription Appearance::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

/// Whoever has chosen a preset has chosen its accent too.
Palette Appearance::worn() const {
    const auto accent = desktop_.accent();
    const bool isDefault =
        shown_ == prefs_.preset.byDefault() || shown_ == prefs_.lightPreset.byDefault();
    return accent && isDefault && !override_ ? Palettes::withAccent(shown_, Color::fromRgb(*accent))
                                             : Palettes::palette(shown_);
}

void Appearance::reconsider() {
    shown_ = preset();
    if (const auto before = std::exchange(palette_, worn()); before != palette_)
        observers_.tell();
}

} // namespace tessarine
