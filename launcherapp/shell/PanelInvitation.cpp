#include "launcherapp/shell/PanelInvitation.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/desktop/DesktopNotice.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/DesktopKey.h"
#include "launcherapp/shell/DesktopPresence.h"

#include <cstdio>
#include <optional>
#include <string>
#include <unistd.h>

namespace tessarine {

namespace {

/// How long nothing is said to the user while the desktop asks for the panel's key.
constexpr Seconds userPatience{2};

// What the program remembers about keys, among the preferences.
constexpr std::string_view toldOfDesktopKey = "toldOfDesktopKey";
constexpr std::string_view desktopKeyWorks = "desktopKeyWorks";

constexpr auto desktopKeyInWords = "The key of your desktop's settings";

void invite(const std::string& text) {
    std::fputs((text + "\n").c_str(), stderr);
}

Invitation::StartedFrom startedFrom() {
    using enum Invitation::StartedFrom;
    return ::isatty(STDERR_FILENO) ? terminal : desktop;
}

} // namespace

PanelInvitation::PanelInvitation(DesktopPresence& presence,
                                 DefaultsStore& defaults,
                                 const DesktopSurroundings& desktop,
                                 Diagnostics& diagnostics,
                                 Notices notices)
    : presence_(presence), defaults_(defaults), desktop_(desktop), diagnostics_(diagnostics),
      notices_(notices) {}

void PanelInvitation::tellWithoutPanel(const DesktopSurroundings& desktop) {
    invite(Invitation::withoutPanel(desktop, startedFrom()));
}

void PanelInvitation::tellOnceKnown(MainQueue& queue) {
    presence_.whenChordIsKnown([this] { tell(); });
    queue.postAfter(userPatience, [this] {
        if (presence_.chord().state == Invitation::Chord::State::asked)
            tell();
    });
}

bool PanelInvitation::remembers(std::string_view preference) const {
    return defaults_.value<bool>(preference).value_or(false);
}

void PanelInvitation::tell() {
    using enum Invitation::Chord::State;
    auto chord = presence_.chord();
    const bool isKeyless = chord.state == none;
    if (isKeyless && remembers(desktopKeyWorks))
        chord.state = desktopOwn;
    const auto key = isKeyless ? DesktopKeys::forPanel(desktop_) : DesktopKey();
    if (chord.state == desktopOwn)
        presence_.setKeyless({.keys = desktopKeyInWords, .advice = {}});
    else if (isKeyless)
        presence_.setKeyless({.keys = {}, .advice = key.where + ": " + key.line});
    invite(Invitation::withPanel(chord, key, startedFrom()));
    if (chord.state == none && notices_ == Notices::allowed && !remembers(toldOfDesktopKey))
        showNotice(Invitation::noKeyYet(chord, key));
}

void PanelInvitation::showNotice(const Invitation::Notice& notice) {
    DesktopNotice::show(
        notice.title, notice.text, [this](const std::optional<std::string>& problem) {
            if (problem)
                return diagnostics_.log("hotkey: how to make one could not be shown: " + *problem);
            defaults_.set(toldOfDesktopKey, true);
        });
}

void PanelInvitation::noteCall() {
    if (presence_.chord().state != Invitation::Chord::State::none || remembers(desktopKeyWorks))
        return;
    defaults_.set(desktopKeyWorks, true);
    presence_.setKeyless({.keys = desktopKeyInWords, .advice = {}});
}

} // namespace tessarine
