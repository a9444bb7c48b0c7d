#include "launcherapp/shell/Invitation.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/shell/DesktopKey.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

using Invitation::StartedFrom;

std::string ended(std::string text, StartedFrom startedFrom) {
    if (startedFrom == StartedFrom::terminal)
        text += "\nControl-C ends it, and so does closing this terminal.";
    return text;
}

} // namespace

std::string Invitation::withPanel(const Chord& chord,
                                  const std::optional<DesktopKey>& desktopKey,
                                  StartedFrom startedFrom) {
    const auto advice = desktopKey ? DesktopKeys::advice(*desktopKey) : std::string();
    switch (chord.state) {
    case Chord::State::held:
        return ended(fmt::format("Tessarine is running. {} brings it up.", chord.keys),
                     startedFrom);
    case Chord::State::asked:
        return ended(fmt::format("Tessarine is running, {}.", chord.status), startedFrom);
    case Chord::State::desktopOwn:
        if (advice.empty())
            break;
        return ended(
            fmt::format("Tessarine is running. If you gave it a key in your desktop's settings, "
                        "that brings it up; otherwise {}",
                        advice),
            startedFrom);
    case Chord::State::none:
        break;
    }
    const auto whatNow = advice.empty() ? fmt::format("; {}.", DesktopTable::noSessionBus)
                                        : ". To have one, " + advice;
    return ended(
        fmt::format("Tessarine is running, and no key brings it up: {}{}", chord.status, whatNow),
        startedFrom);
}

Invitation::Notice Invitation::noKeyYet(const Chord& chord, const DesktopKey& desktopKey) {
    return {.title = "No key brings Tessarine up yet",
            .text =
                fmt::format("{}. To have one, {}", chord.status, DesktopKeys::advice(desktopKey))};
}

std::string Invitation::withoutPanel(const DesktopSurroundings& desktop, StartedFrom startedFrom) {
    return ended(fmt::format("Tessarine is running, but its panel can't come up: {}. The README "
                             "tells what works without it.",
                             missingDisplay(desktop)),
                 startedFrom);
}

std::string Invitation::missingDisplay(const DesktopSurroundings& desktop) {
    // A compositor that answers was of no use to Qt alone.
    if (desktop.hasWayland && !DesktopTable::isSilent(desktop))
        return "Qt can't show it on Wayland, for the package qt6-wayland is missing, or "
               "QT_QPA_PLATFORM asks for another display";
    if (!desktop.hasWayland && desktop.hasX11)
        return "the X11 display does not answer";
    return DesktopTable::reason(desktop, DesktopAbility::panel);
}

std::string Invitation::missingToBus(const DesktopSurroundings& desktop) {
    const auto missing = missingDisplay(desktop);
    if (desktop.hasWayland || desktop.hasX11)
        return missing;
    return missing + " that the session bus was told of: let the compositor run "
                     "\"dbus-update-activation-environment WAYLAND_DISPLAY\" at its start";
}

} // namespace tessarine
