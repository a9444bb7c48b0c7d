#include "launcherapp/shell/PanelInvitation.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/desktop/DesktopNotice.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/DesktopKey.h"
#include "launcherapp/shell/DesktopPresence.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// How long nothing is said to the user while the desktop asks for the panel's key.
constexpr Seconds userPatience{2};

using State = Invitation::Chord::State;

// What the program remembers about keys, among the preferences: the desktops where it is so.
constexpr std::string_view toldOfDesktopKey = "toldOfDesktopKey";
constexpr std::string_view desktopKeyWorks = "desktopKeyWorks";

constexpr auto desktopKeyInWords = "A key of your desktop's settings, if you made one,";

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
                                 DesktopSurroundings desktop,
                                 Diagnostics& diagnostics,
                                 Notices notices)
    : presence_(presence), defaults_(defaults), desktop_(std::move(desktop)),
      diagnostics_(diagnostics), notices_(notices) {}

void PanelInvitation::tellWithoutPanel(const DesktopSurroundings& desktop) {
    invite(Invitation::withoutPanel(desktop, startedFrom()));
}

void PanelInvitation::tellOnceKnown(MainQueue& queue) {
    changes_ = presence_.onChordChange([this, &queue] {
        // Taking chords anew lets some go for a moment.
        if (std::exchange(looksSoon_, true))
            return;
        queue.post([this] {
            looksSoon_ = false;
            look();
        });
    });
    look();
    queue.postAfter(userPatience, [this] {
        if (!told_)
            tell();
    });
}

bool PanelInvitation::remembers(std::string_view preference) const {
    const auto known = defaults_.value<std::vector<std::string>>(preference);
    return known && std::ranges::count(*known, DesktopKeys::desktop(desktop_)) > 0;
}

void PanelInvitation::remember(std::string_view preference) {
    if (remembers(preference))
        return;
    auto known = defaults_.value<std::vector<std::string>>(preference);
    if (!known)
        known.emplace();
    known->push_back(DesktopKeys::desktop(desktop_));
    defaults_.set(preference, *known);
}

void PanelInvitation::look() {
    const auto chord = presence_.chord();
    if (chord.state == State::asked)
        return;
    const bool hadCalled = std::exchange(hasCalled_, false);
    if (hadCalled && chord.state == State::none)
        remember(desktopKeyWorks);
    if (!told_ || told_->state != chord.state || told_->keys != chord.keys)
        tell();
}

void PanelInvitation::tell() {
    auto chord = presence_.chord();
    told_ = chord;
    const bool isKeyless = chord.state == State::none;
    const auto key = isKeyless ? DesktopKeys::forPanel(desktop_) : std::nullopt;
    if (isKeyless && remembers(desktopKeyWorks))
        chord.state = State::desktopOwn;
    if (chord.state == State::desktopOwn)
        presence_.setKeyless({.keys = desktopKeyInWords, .advice = {}});
    else if (isKeyless)
        presence_.setKeyless({.keys = {},
                              .advice = key ? key->where + ": " + key->line
                                            : std::string(DesktopTable::noSessionBus)});
    invite(Invitation::withPanel(chord, key, startedFrom()));
    if (chord.state == State::none && key && notices_ == Notices::allowed &&
        !remembers(toldOfDesktopKey))
        showNotice(Invitation::noKeyYet(chord, *key));
}

void PanelInvitation::showNotice(const Invitation::Notice& notice) {
    DesktopNotice::show(
        notice.title, notice.text, [this](const std::optional<std::string>& problem) {
            if (problem)
                return diagnostics_.log("hotkey: how to make one could not be shown: " + *problem);
            remember(toldOfDesktopKey);
        });
}

void PanelInvitation::noteCall() {
    const auto state = presence_.chord().state;
    if (state == State::asked)
        hasCalled_ = true;
    if (state != State::none)
        return;
    remember(desktopKeyWorks);
    presence_.setKeyless({.keys = desktopKeyInWords, .advice = {}});
}

} // namespace tessarine
