#include "launcherapp/hotkeys/HotkeySetup.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/RivalLaunchers.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

constexpr std::uint32_t spaceKey = 49;
constexpr HotkeyBinding commandSpace{.keyCode = spaceKey,
                                     .carbonModifiers = HotkeyModifiers::command};
constexpr HotkeyBinding none;

} // namespace

constexpr HotkeyBinding HotkeySetup::fallback{.keyCode = spaceKey,
                                              .carbonModifiers = HotkeyModifiers::option};

HotkeySetup::HotkeySetup(Services services, Actions actions)
    : services_(services), actions_(std::move(actions)) {}

void HotkeySetup::registerHotkey() {
    constexpr auto everything = Report::everything;
    registerPanel(everything);
    registerOptional(
        HotkeyIDs::clipboard, services_.prefs.clipboardHotkey(), actions_.clipboard, everything);
    registerOptional(HotkeyIDs::voice, services_.prefs.voiceHotkey(), actions_.voice, everything);
    if (!settings_.active())
        settings_ = services_.prefs.onChange([this](std::string_view key) { settingChanged(key); });
}

void HotkeySetup::settingChanged(std::string_view key) {
    const auto& prefs = services_.prefs;
    const std::array keys{prefs.hotkey.key(),
                          prefs.clipboardHotkey.key(),
                          prefs.voiceHotkey.key(),
                          prefs.tookHotkeyDeliberately.key()};
    if (std::ranges::count(keys, key) > 0)
        registerHotkey();
}

std::optional<std::string> HotkeySetup::chordIsLeftTo() const {
    const auto& prefs = services_.prefs;
    if (prefs.hotkey() != commandSpace || prefs.tookHotkeyDeliberately())
        return std::nullopt;
    const auto running = services_.rivals.running();
    return running.empty() ? std::nullopt : std::optional(running.front());
}

void HotkeySetup::registerPanel(Report report) {
    auto& hotkey = services_.hotkey;
    const auto wanted = services_.prefs.hotkey();
    if (wanted == none) {
        hotkey.remove(HotkeyIDs::panel);
        return;
    }
    const auto before = hotkey.binding(HotkeyIDs::panel);
    const auto say = [&](const std::string& text) {
        if (report == Report::everything || hotkey.binding(HotkeyIDs::panel) != before)
            services_.diagnostics.log(text);
    };
    auto chord = wanted;
    if (const auto rival = chordIsLeftTo()) {
        chord = fallback;
        services_.diagnostics.log(
            fmt::format("{} is running; leaving {} to it and using {} until you take it over in "
                        "Settings",
                        *rival,
                        HotkeyNames::display(wanted),
                        HotkeyNames::display(fallback)));
    }
    if (hotkey.add(chord, HotkeyIDs::panel, actions_.panel))
        return;
    const auto refusal = hotkey.status();
    if (chord != fallback && hotkey.add(fallback, HotkeyIDs::panel, std::nullopt)) {
        say(refusal);
        say(fmt::format("fell back to {} until {} is free",
                        HotkeyNames::display(fallback),
                        HotkeyNames::display(chord)));
        return;
    }
    // Asked once more, so that the status is about the chord that the user knows of.
    if (chord != fallback && hotkey.add(chord, HotkeyIDs::panel, std::nullopt))
        return;
    say(hotkey.status());
}

void HotkeySetup::registerOptional(std::uint32_t id,
                                   const HotkeyBinding& binding,
                                   std::function<void()> action,
                                   Report report) {
    auto& hotkey = services_.hotkey;
    if (binding == none || !action) {
        hotkey.remove(id);
        return;
    }
    if (hotkey.add(binding, id, std::move(action)) || report == Report::changes)
        return;
    services_.diagnostics.log(
        id == HotkeyIDs::voice
            ? fmt::format("voice hotkey {} is taken by another app", HotkeyNames::display(binding))
            : hotkey.status(id));
}

void HotkeySetup::retry() {
    auto& hotkey = services_.hotkey;
    const auto& prefs = services_.prefs;
    if (hotkey.binding(HotkeyIDs::panel) != prefs.hotkey())
        registerPanel(Report::changes);
    if (!hotkey.binding(HotkeyIDs::clipboard))
        registerOptional(
            HotkeyIDs::clipboard, prefs.clipboardHotkey(), actions_.clipboard, Report::changes);
    if (!hotkey.binding(HotkeyIDs::voice))
        registerOptional(HotkeyIDs::voice, prefs.voiceHotkey(), actions_.voice, Report::changes);
}

} // namespace tessarine
