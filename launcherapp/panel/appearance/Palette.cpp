#include "launcherapp/panel/appearance/Palette.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <limits>

namespace tessarine {

namespace {

using Contrast::between;

constexpr auto allPresets = std::to_array<AppearancePreset>({
    AppearancePreset::ink,
    AppearancePreset::violet,
    AppearancePreset::graphite,
    AppearancePreset::midnight,
    AppearancePreset::forest,
    AppearancePreset::ember,
    AppearancePreset::nocturne,
    AppearancePreset::paper,
    AppearancePreset::linen,
    AppearancePreset::snow,
    AppearancePreset::sand,
    AppearancePreset::mint,
    AppearancePreset::rose,
});

/// What makes a preset itself; the other colours are steps between these.
struct Seed {
    Palette::Tone tone;
    std::uint32_t panel;
    std::uint32_t text;
    std::uint32_t accent;
    std::uint32_t destructive;
};

using enum Palette::Tone;

/// In the order of the presets.
constexpr auto seeds = std::to_array<Seed>({
    {dark, 0x15181E, 0xF1F4F9, 0x7DB1FF, 0xFF8A80},  // ink
    {dark, 0x1B1628, 0xF3EFFC, 0xBFA3FF, 0xFF8F9C},  // violet
    {dark, 0x232527, 0xF2F2F0, 0xA9C9E8, 0xFF9489},  // graphite
    {dark, 0x0A1330, 0xEAF0FF, 0x74CDF7, 0xFF8F94},  // midnight
    {dark, 0x11201A, 0xEDF5EF, 0x86D6A0, 0xFF9A88},  // forest
    {dark, 0x221512, 0xFCF0EA, 0xFFA677, 0xFF8C8C},  // ember
    {dark, 0x000000, 0xEDEDED, 0xE7C380, 0xFF8A80},  // nocturne
    {light, 0xFAFAF7, 0x1C1D20, 0x1D5BB8, 0xB3261E}, // paper
    {light, 0xF5EFE6, 0x2A251F, 0x87480F, 0xA8231B}, // linen
    {light, 0xFFFFFF, 0x13161B, 0x0A5ED0, 0xB91C1C}, // snow
    {light, 0xEFE5D2, 0x2C2417, 0x7D3A0C, 0x9C1F17}, // sand
    {light, 0xECF6F0, 0x11251B, 0x0A653A, 0xA8231B}, // mint
    {light, 0xFBF0F2, 0x2D1A20, 0xA01C4B, 0xA6201A}, // rose
});

static_assert(seeds.size() == allPresets.size());

/// How much of what is behind the panel shows through: enough to belong to the desktop, too little
/// to get in the way of reading.
constexpr std::uint8_t panelAlpha = 247;

/// The contrast with whichever of the backgrounds is worse, whatever is behind the panel.
double worstRatio(Color text, std::span<const Color> backgrounds) {
    double worst = std::numeric_limits<double>::max();
    for (const auto background : backgrounds) {
        for (const auto desktop : {0x000000U, 0xFFFFFFU})
            worst = std::min(
                worst, Contrast::ratio(text, Contrast::over(background, Color::fromRgb(desktop))));
    }
    return worst;
}

/// `part` of the way from one colour to the other, or as much further as reading it on all of the
/// backgrounds takes.
Color readable(Color from, Color to, double part, std::initializer_list<Color> backgrounds) {
    constexpr double wanted = 4.6; ///< 4.5 of level AA, and a little for rounding
    constexpr double step = 0.01;
    auto color = between(from, to, part);
    while (part < 1 && worstRatio(color, backgrounds) < wanted) {
        part += step;
        color = between(from, to, std::min(part, 1.0));
    }
    return color;
}

Palette made(const Seed& seed) {
    const bool isDark = seed.tone == dark;
    const auto panel = Color::fromRgb(seed.panel);
    const auto text = Color::fromRgb(seed.text);
    const auto accent = Color::fromRgb(seed.accent);
    const auto white = Color::fromRgb(0xFFFFFF);
    const auto black = Color::fromRgb(0x000000);
    const auto glass = panel.withAlpha(panelAlpha);
    const auto selection = between(panel, accent, isDark ? 0.20 : 0.14);
    const auto menu = between(panel, isDark ? text : white, isDark ? 0.075 : 0.6);
    const auto menuSelection = between(menu, accent, isDark ? 0.22 : 0.16);
    const auto textStep = [&](double part) { return between(panel, text, part); };
    const auto hover = textStep(isDark ? 0.055 : 0.045);
    const auto quiet = [&](double part) { return readable(panel, text, part, {glass, hover}); };
    return {
        .tone = seed.tone,
        .panel = glass,
        .border = textStep(isDark ? 0.17 : 0.16),
        .separator = textStep(0.11),
        .shadow = black.withAlpha(isDark ? 150 : 80),
        .fieldText = text,
        .placeholder = quiet(0.52),
        .textSelection = between(panel, accent, isDark ? 0.36 : 0.26),
        .title = textStep(0.97),
        .subtitle = readable(panel, text, 0.62, {glass, hover, menu}),
        .matched = accent,
        .credit = quiet(0.58),
        .digit = quiet(0.50),
        .symbol = textStep(0.82),
        .symbolTile = textStep(isDark ? 0.10 : 0.075),
        .running = accent,
        .selection = selection,
        .selectedTitle = between(text, isDark ? white : black, 0.5),
        .selectedSubtitle = readable(selection, text, 0.74, {selection, menuSelection}),
        .selectedMatched = between(accent, isDark ? white : black, isDark ? 0.30 : 0.18),
        .selectedTile = between(selection, text, 0.11),
        .hover = hover,
        .footerText = quiet(0.54),
        .keyCap = textStep(isDark ? 0.12 : 0.085),
        .keyCapText = textStep(0.82),
        .menu = menu,
        .menuText = textStep(0.96),
        .menuSelection = menuSelection,
        .accent = accent,
        .destructive = readable(Color::fromRgb(seed.destructive), text, 0, {menu, menuSelection}),
    };
}

} // namespace

std::span<const AppearancePreset> Palettes::presets() {
    return allPresets;
}

const Palette& Palettes::palette(AppearancePreset preset) {
    static const auto palettes = [] {
        std::array<Palette, seeds.size()> result;
        std::ranges::transform(seeds, result.begin(), made);
        return result;
    }();
    return palettes[static_cast<std::size_t>(preset)];
}

Palette Palettes::withAccent(AppearancePreset preset, Color accent) {
    auto seed = seeds[static_cast<std::size_t>(preset)];
    const auto text = Color::fromRgb(seed.text);
    constexpr int steps = 20;
    for (int step = 0; step < steps; ++step) {
        const auto nearer = between(accent, text, static_cast<double>(step) / steps);
        seed.accent =
            static_cast<std::uint32_t>(nearer.red << 16 | nearer.green << 8 | nearer.blue);
        const auto result = made(seed);
        if (std::ranges::all_of(pairs(result), &Pair::passes))
            return result;
    }
    return palette(preset);
}

std::string_view Palettes::name(AppearancePreset preset) {
    return StoredNames<AppearancePreset>::names[static_cast<std::size_t>(preset)];
}

std::optional<AppearancePreset> Palettes::named(std::string_view name) {
    const auto found = std::ranges::find(allPresets, name, Palettes::name);
    return found == allPresets.end() ? std::nullopt : std::optional(*found);
}

Color Palettes::monogram(std::string_view name) {
    static constexpr auto colors = std::to_array<std::uint32_t>(
        {0x3A68B0, 0x7148A8, 0x2A7455, 0xA94A22, 0x9E3558, 0x4E5A6B, 0x7C5C10, 0x17707F});
    // FNV-1a: the standard's own hash may differ between builds, and a name keeps its colour.
    std::uint32_t hash = 2166136261U;
    for (const char c : name)
        hash = (hash ^ static_cast<std::uint8_t>(c)) * 16777619U;
    return Color::fromRgb(colors[(hash >> 8) % colors.size()]);
}

std::vector<Palettes::Pair> Palettes::pairs(const Palette& p) {
    using enum Pair::Kind;

    struct Drawn {
        std::string_view foreground;
        Color Palette::*color;
        std::string_view background;
        Color Palette::*behind;
        Pair::Kind kind;
    };

    static constexpr auto drawn = std::to_array<Drawn>({
        {"field text", &Palette::fieldText, "panel", &Palette::panel, text},
        {"field text", &Palette::fieldText, "selected text", &Palette::textSelection, text},
        {"placeholder", &Palette::placeholder, "panel", &Palette::panel, text},
        {"title", &Palette::title, "panel", &Palette::panel, text},
        {"title", &Palette::title, "hover", &Palette::hover, text},
        {"subtitle", &Palette::subtitle, "panel", &Palette::panel, text},
        {"subtitle", &Palette::subtitle, "hover", &Palette::hover, text},
        {"matched text", &Palette::matched, "panel", &Palette::panel, text},
        {"matched text", &Palette::matched, "hover", &Palette::hover, text},
        {"credit", &Palette::credit, "panel", &Palette::panel, text},
        {"credit", &Palette::credit, "hover", &Palette::hover, text},
        {"digit", &Palette::digit, "panel", &Palette::panel, text},
        {"digit", &Palette::digit, "hover", &Palette::hover, text},
        {"symbol", &Palette::symbol, "panel", &Palette::panel, mark},
        {"symbol", &Palette::symbol, "symbol tile", &Palette::symbolTile, mark},
        {"symbol", &Palette::symbol, "selected tile", &Palette::selectedTile, mark},
        {"hint's symbol", &Palette::accent, "symbol tile", &Palette::symbolTile, mark},
        {"hint's symbol", &Palette::accent, "selected tile", &Palette::selectedTile, mark},
        {"glyph", &Palette::title, "symbol tile", &Palette::symbolTile, text},
        {"glyph", &Palette::title, "selected tile", &Palette::selectedTile, text},
        {"running mark", &Palette::running, "panel", &Palette::panel, mark},
        {"running mark", &Palette::running, "selection", &Palette::selection, mark},
        {"selected title", &Palette::selectedTitle, "selection", &Palette::selection, text},
        {"selected subtitle", &Palette::selectedSubtitle, "selection", &Palette::selection, text},
        {"selected match", &Palette::selectedMatched, "selection", &Palette::selection, text},
        {"footer text", &Palette::footerText, "panel", &Palette::panel, text},
        {"key name", &Palette::keyCapText, "key cap", &Palette::keyCap, text},
        {"menu text", &Palette::menuText, "menu", &Palette::menu, text},
        {"menu text", &Palette::menuText, "menu selection", &Palette::menuSelection, text},
        {"menu text", &Palette::menuText, "hover", &Palette::hover, text},
        {"warning", &Palette::destructive, "hover", &Palette::hover, text},
        {"menu detail", &Palette::subtitle, "menu", &Palette::menu, text},
        {"menu detail",
         &Palette::selectedSubtitle,
         "menu selection",
         &Palette::menuSelection,
         text},
        {"warning", &Palette::destructive, "menu", &Palette::menu, text},
        {"warning", &Palette::destructive, "menu selection", &Palette::menuSelection, text},
        {"accent", &Palette::accent, "panel", &Palette::panel, mark},
        {"accent", &Palette::accent, "menu", &Palette::menu, mark},
    });

    std::vector<Pair> result;
    for (const auto& each : drawn) {
        const auto onto = [&](std::uint32_t desktop) {
            const auto behind = Contrast::over(p.*each.behind, Color::fromRgb(desktop));
            return Contrast::ratio(p.*each.color, behind);
        };
        result.push_back({.foreground = each.foreground,
                          .background = each.background,
                          .kind = each.kind,
                          .ratio = std::min(onto(0x000000), onto(0xFFFFFF))});
    }
    return result;
}

} // namespace tessarine
