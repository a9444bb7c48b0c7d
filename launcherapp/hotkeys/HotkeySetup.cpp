#include "launcherapp/hotkeys/HotkeySetup.h"

#include "LauncherCore/commands/VirtualKeys.h"
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

using VirtualKeys::space;

constexpr HotkeyBinding commandSpace{.keyCode = space, .carbonModifiers = HotkeyModifiers::command};
/// For a chord of the panel's that can't be had, the first that is free. Alt+Space opens a window's
/// menu with most window managers, and a desktop's runner may have it too, so it alone may leave
/// the panel without any key; the others have Super and a second modifier, which desktops leave to
/// the user and programs don't bind.
constexpr auto standIns = std::to_array<HotkeyBinding>({
    {.keyCode = space, .carbonModifiers = HotkeyModifiers::option},
    {.keyCode = space, .carbonModifiers = HotkeyModifiers::control | HotkeyModifiers::command},
    {.keyCode = space, .carbonModifiers = HotkeyModifiers::option | HotkeyModifiers::command},
});
constexpr HotkeyBinding none;
constexpr std::array ownIDs{HotkeyIDs::panel, HotkeyIDs::clipboard, HotkeyIDs::voice};

} // namespace

HotkeySetup::HotkeySetup(Services services, Actions actions)
    : services_(services), actions_(std::move(actions)) {}

void HotkeySetup::registerHotkey() {
    resolveSwaps();
    registerPanel(Report::everything);
    registerOptionals(Report::everything);
    if (settings_.active())
        return;
    settings_ = services_.prefs.onChange([this](std::string_view key) { settingChanged(key); });
    keys_ = services_.hotkey.onKeysChanged([this] { retry(); });
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

/// What the settings give it; nothing for none, and for what has nothing to do.
std::optional<HotkeyBinding> HotkeySetup::wanted(std::uint32_t id) const {
    const auto& prefs = services_.prefs;
    const auto binding = id == HotkeyIDs::panel       ? prefs.hotkey()
                         : id == HotkeyIDs::clipboard ? prefs.clipboardHotkey()
                                                      : prefs.voiceHotkey();
    const auto& action = id == HotkeyIDs::panel       ? actions_.panel
                         : id == HotkeyIDs::clipboard ? actions_.clipboard
                                                      : actions_.voice;
    return binding == none || !action ? std::nullopt : std::optional(binding);
}

/// One part's new chord may be what another one still holds from before the settings changed.
void HotkeySetup::resolveSwaps() {
    for (const auto id : ownIDs) {
        const auto held = services_.hotkey.claim(id);
        const bool isAnothers =
            held && held != wanted(id) &&
            std::ranges::any_of(ownIDs, [&](std::uint32_t other) { return wanted(other) == held; });
        if (isAnothers)
            services_.hotkey.remove(id);
    }
}

std::optional<std::string> HotkeySetup::rivalInTheWay() const {
    const auto& prefs = services_.prefs;
    if (prefs.hotkey() != commandSpace || prefs.tookHotkeyDeliberately())
        return std::nullopt;
    if (services_.hotkey.takesNoStandIns())
        return std::nullopt; // between launchers too
    const auto running = services_.rivals.running();
    return running.empty() ? std::nullopt : std::optional(running.front());
}

std::optional<std::string> HotkeySetup::chordIsLeftTo() const {
    return isTakenAfterAll_ ? std::nullopt : rivalInTheWay();
}

/// Those to try, best first. What is left to another launcher comes last: it may use other keys,
/// and without any key the panel can't be summoned.
std::vector<HotkeyBinding> HotkeySetup::panelChords(Wanted order) const {
    const auto first = services_.prefs.hotkey();
    if (services_.hotkey.takesNoStandIns())
        return {first};
    std::vector<HotkeyBinding> chords;
    for (const auto& chord : standIns) {
        if (chord != first && chord != wanted(HotkeyIDs::clipboard) &&
            chord != wanted(HotkeyIDs::voice))
            chords.push_back(chord);
    }
    chords.insert(order == Wanted::last ? chords.end() : chords.begin(), first);
    return chords;
}

void HotkeySetup::registerPanel(Report report) {
    auto& hotkey = services_.hotkey;
    isTakenAfterAll_ = false;
    const auto chord = wanted(HotkeyIDs::panel);
    if (!chord) {
        hotkey.remove(HotkeyIDs::panel);
        return;
    }
    const auto before = hotkey.binding(HotkeyIDs::panel);
    const auto rival = rivalInTheWay();
    const auto chords = panelChords(rival ? Wanted::last : Wanted::first);
    const auto display = HotkeyNames::display(*chord);
    std::vector<std::string> news;
    if (rival)
        news.push_back(fmt::format("{} is running; leaving {} to it and using {} until you take it "
                                   "over in Settings",
                                   *rival,
                                   display,
                                   HotkeyNames::display(chords.front())));
    const auto taken = std::ranges::find_if(chords, [&](const HotkeyBinding& each) {
        const bool registered = hotkey.add(each, HotkeyIDs::panel, actions_.panel);
        if (!registered)
            news.push_back(hotkey.status());
        return registered;
    });
    if (taken == chords.end() && chords.back() != chord)
        hotkey.add(*chord, HotkeyIDs::panel, std::nullopt); // its status is what the user asks for
    isTakenAfterAll_ = rival && taken != chords.end() && *taken == *chord;
    if (isTakenAfterAll_)
        news.push_back(fmt::format("using {} after all", display));
    else if (taken != chords.end() && taken != chords.begin())
        news.push_back(
            fmt::format("fell back to {} until {} is free", HotkeyNames::display(*taken), display));
    if (report == Report::changes && hotkey.binding(HotkeyIDs::panel) == before)
        return;
    for (const auto& line : news)
        services_.diagnostics.log(line);
}

void HotkeySetup::registerOptionals(Report report) {
    registerOptional(HotkeyIDs::clipboard, actions_.clipboard, report);
    registerOptional(HotkeyIDs::voice, actions_.voice, report);
}

void HotkeySetup::registerOptional(std::uint32_t id,
                                   const std::function<void()>& action,
                                   Report report) {
    auto& hotkey = services_.hotkey;
    const auto chord = wanted(id);
    if (!chord)
        return hotkey.remove(id);
    if (report == Report::changes && hotkey.binding(id) == chord)
        return;
    if (hotkey.add(*chord, id, action) || report == Report::changes)
        return;
    services_.diagnostics.log(
        id == HotkeyIDs::voice
            ? fmt::format("voice hotkey {} is taken by another app", HotkeyNames::display(*chord))
            : hotkey.status(id));
}

void HotkeySetup::retry() {
    if (!rivalInTheWay())
        isTakenAfterAll_ = false; // the next one is left its chord again
    retryPanel();
    registerOptionals(Report::changes);
}

void HotkeySetup::retryPanel() {
    auto& hotkey = services_.hotkey;
    const auto chord = wanted(HotkeyIDs::panel);
    const auto held = hotkey.binding(HotkeyIDs::panel);
    if (!chord || held == chord)
        return;
    if (!held)
        return registerPanel(Report::changes);
    if (!rivalInTheWay() && hotkey.addIfFree(*chord, HotkeyIDs::panel))
        services_.diagnostics.log(fmt::format("{} is free; {} is given up for it",
                                              HotkeyNames::display(*chord),
                                              HotkeyNames::display(*held)));
}

} // namespace tessarine
