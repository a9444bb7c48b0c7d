#include "launcherapp/panel/appearance/Appearance.h"

#include "launcherapp/panel/appearance/AppearanceSelftest.h"
#include "tests/fakes/FakeDesktopAppearance.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

TEST(Contrast, isThatOfTheGuidelines) {
    const struct {
        std::uint32_t one;
        std::uint32_t other;
        double ratio;
    } cases[] = {
        {0x000000, 0xFFFFFF, 21},   // the greatest that there is
        {0x777777, 0xFFFFFF, 4.48}, // the well-known near miss of level AA
        {0x767676, 0xFFFFFF, 4.54}, // and the well-known pass
        {0xFF0000, 0xFFFFFF, 4.00}, // each channel counts by itself
        {0x0000FF, 0x000000, 2.44},
    };

    for (const auto& [one, other, ratio] : cases) {
        EXPECT_NEAR(Contrast::ratio(Color::fromRgb(one), Color::fromRgb(other)), ratio, 0.005);
        EXPECT_NEAR(Contrast::ratio(Color::fromRgb(other), Color::fromRgb(one)), ratio, 0.005);
    }
}

TEST(Palettes, everythingCanBeReadInEveryPresetBeforeAnyDesktop) {
    for (const auto preset : Palettes::presets()) {
        for (const auto& pair : Palettes::pairs(Palettes::palette(preset)))
            EXPECT_GE(pair.ratio, pair.required())
                << Palettes::name(preset) << ": " << pair.foreground << " on " << pair.background;
    }
    EXPECT_EQ(appearanceSelftest().verdict, SelftestResult::Verdict::proved);
}

TEST(Palettes, thePresetsAreThirteenAndDarkOrLightByTheirGround) {
    EXPECT_EQ(Palettes::presets().size(), StoredNames<AppearancePreset>::names.size());
    for (const auto preset : Palettes::presets()) {
        const auto& palette = Palettes::palette(preset);
        const bool isDark = Contrast::luminance(palette.panel) < 0.18;
        EXPECT_EQ(palette.tone == Palette::Tone::dark, isDark) << Palettes::name(preset);
        EXPECT_EQ(isDark, preset < AppearancePreset::paper) << Palettes::name(preset);
        // The selected row and the menus must be seen to be other than the panel.
        EXPECT_GT(Contrast::ratio(palette.selection, palette.panel.withAlpha(255)), 1.1);
        EXPECT_NE(palette.matched, palette.title);
    }
}

TEST(Palettes, whiteLettersCanBeReadOnEveryMonogram) {
    for (int i = 0; i < 200; ++i) {
        const auto color = Palettes::monogram("App " + std::to_string(i));
        EXPECT_GE(Contrast::ratio(color, Color::fromRgb(0xFFFFFF)), 4.5) << i;
    }
    EXPECT_EQ(Palettes::monogram("Almanac"), Palettes::monogram("Almanac"));
}

class AppearanceTest : public testing::Test {
protected:
    AppearanceTest() {
        services.prefs.preset.set(AppearancePreset::ember);
        services.prefs.lightPreset.set(AppearancePreset::mint);
        subscription = appearance.onChange([this] { ++changes; });
    }

    FakeServices services;
    FakeDesktopAppearance desktop;
    Appearance appearance{services.prefs, desktop, services.diagnostics};
    int changes = 0;
    Subscription subscription;
};

TEST_F(AppearanceTest, holdsWhatTheSettingsAndTheDesktopSay) {
    using enum AppearancePreset;

    const struct {
        AppearanceMode mode;
        ColorScheme scheme;
        AppearancePreset preset;
    } cases[] = {
        {AppearanceMode::automatic, ColorScheme::dark, ember},
        {AppearanceMode::automatic, ColorScheme::light, mint},
        {AppearanceMode::automatic, ColorScheme::none, mint}, // as the desktop's own programs
        {AppearanceMode::dark, ColorScheme::light, ember},    // the user's word is the last
        {AppearanceMode::light, ColorScheme::dark, mint},
    };

    for (const auto& [mode, scheme, preset] : cases) {
        services.prefs.mode.set(mode);
        desktop.set(scheme);
        EXPECT_EQ(appearance.preset(), preset);
    }
}

TEST_F(AppearanceTest, isToldOnlyWhenAnotherPaletteHolds) {
    desktop.set(ColorScheme::dark);
    EXPECT_EQ(changes, 1);
    desktop.set(ColorScheme::dark, Motion::reduced);
    services.prefs.lightPreset.set(AppearancePreset::rose); // not the one in force
    EXPECT_EQ(changes, 1);
    services.prefs.preset.set(AppearancePreset::nocturne);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(appearance.palette(), Palettes::palette(AppearancePreset::nocturne));
}

TEST_F(AppearanceTest, aPresetThatNobodyChoseWearsTheDesktopsAccent) {
    const auto unchosen = services.prefs.preset.byDefault();
    services.prefs.preset.set(unchosen);
    desktop.set(ColorScheme::dark);
    const int before = changes;
    desktop.setAccent(0xFFB0C0);
    EXPECT_EQ(changes, before + 1);
    EXPECT_EQ(appearance.palette().accent, Color::fromRgb(0xFFB0C0)) << "it can be read as it is";
    desktop.set(ColorScheme::light);
    EXPECT_EQ(appearance.palette(), Palettes::palette(AppearancePreset::mint)) << "chosen";
    desktop.set(ColorScheme::dark);
    desktop.setAccent(std::nullopt);
    EXPECT_EQ(appearance.palette(), Palettes::palette(unchosen));
}

TEST(PaletteAccent, whateverTheUserLikesCanBeRead) {
    for (const auto preset : Palettes::presets()) {
        for (std::uint32_t rgb = 0; rgb <= 0xFFFFFF; rgb += 0x123457) {
            const auto accent = Color::fromRgb(rgb);
            for (const auto& pair : Palettes::pairs(Palettes::withAccent(preset, accent)))
                EXPECT_TRUE(pair.passes())
                    << Palettes::name(preset) << " with " << rgb << ": " << pair.foreground
                    << " on " << pair.background << ": " << pair.ratio;
        }
    }
}

TEST_F(AppearanceTest, anOverrideIsStoredNowhere) {
    int writes = 0;
    const auto watch = services.prefs.onChange([&](std::string_view) { ++writes; });
    appearance.setOverride(AppearancePreset::violet);
    EXPECT_EQ(appearance.preset(), AppearancePreset::violet);
    desktop.set(ColorScheme::dark);
    EXPECT_EQ(appearance.preset(), AppearancePreset::violet);
    appearance.setOverride(std::nullopt);
    EXPECT_EQ(appearance.preset(), AppearancePreset::ember);
    EXPECT_EQ(writes, 0);
}

TEST_F(AppearanceTest, aPresetOfTheWrongToneStandsForTheDefaultAndIsTold) {
    services.prefs.preset.set(AppearancePreset::paper);
    services.prefs.lightPreset.set(AppearancePreset::forest);
    services.prefs.mode.set(AppearanceMode::dark);
    EXPECT_EQ(appearance.preset(), AppearancePreset::ink);
    services.prefs.mode.set(AppearanceMode::light);
    EXPECT_EQ(appearance.preset(), AppearancePreset::paper);
    const auto log = services.log();
    EXPECT_NE(log.find(" appearance: paper is no dark preset; ink stands for it\n"),
              std::string::npos);
    EXPECT_NE(log.find(" appearance: forest is no light preset; paper stands for it\n"),
              std::string::npos);
}

} // namespace
} // namespace tessarine
