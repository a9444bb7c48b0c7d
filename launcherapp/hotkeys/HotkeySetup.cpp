#include "launcherapp/hotkeys/HotkeySetup.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/RivalLaunchers.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

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
    const auto rival = chordIsLeftTo();
    if (rival)
        services_.diagnostics.log(
            fmt::format("{} is running; leaving {} to it and using {} until you take it over in "
                        "Settings",
                        *rival,
                        HotkeyNames::display(wanted),
                        HotkeyNames::display(fallback)));
    // What is left to another launcher is asked for after all where nothing else can be had: that
    // launcher may use other keys, and without any the panel can't be summoned.
    std::vector<HotkeyBinding> chords{wanted};
    if (wanted != fallback)
        chords.insert(rival ? chords.begin() : chords.end(), fallback);

    std::vector<std::string> news;
    const auto taken = std::ranges::find_if(chords, [&](const HotkeyBinding& chord) {
        const bool registered = hotkey.add(chord, HotkeyIDs::panel, actions_.panel);
        if (!registered)
            news.push_back(hotkey.status());
        return registered;
    });
    if (taken == chords.end() && chords.back() != wanted)
        hotkey.add(wanted, HotkeyIDs::panel, std::nullopt); // its status is what the user asks for
    if (taken != chords.end() && taken != chords.begin())
        news.push_back(rival ? fmt::format("using {} after all", HotkeyNames::display(*taken))
                             : fmt::format("fell back to {} until {} is free",
                                           HotkeyNames::display(*taken),
                                           HotkeyNames::display(wanted)));
    if (report == Report::changes && hotkey.binding(HotkeyIDs::panel) == before)
        return;
    for (const auto& line : news)
        services_.diagnostics.log(line);
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
