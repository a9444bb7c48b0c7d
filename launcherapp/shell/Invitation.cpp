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

std::string
Invitation::withPanel(const Chord& chord, const DesktopKey& desktopKey, StartedFrom startedFrom) {
    switch (chord.state) {
    case Chord::State::held:
        return ended(fmt::format("Tessarine is running. {} brings it up.", chord.keys),
                     startedFrom);
    case Chord::State::asked:
        return ended(fmt::format("Tessarine is running, {}.", chord.status), startedFrom);
    case Chord::State::desktopOwn:
        return ended("Tessarine is running. The key that you gave it in your desktop's settings "
                     "brings it up.",
                     startedFrom);
    case Chord::State::none:
        break;
    }
    return ended(fmt::format("Tessarine is running, and no key brings it up: {}. To have one, {}",
                             chord.status,
                             DesktopKeys::advice(desktopKey)),
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

} // namespace tessarine
