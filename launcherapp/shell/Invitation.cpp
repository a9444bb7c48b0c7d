#include "launcherapp/shell/Invitation.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

using Invitation::StartedFrom;

std::string bindingHint() {
    return fmt::format("bind a key of your desktop's to\n    gapplication action {} toggle",
                       ProductInfo::bundleID);
}

std::string ended(std::string text, StartedFrom startedFrom) {
    if (startedFrom == StartedFrom::terminal)
        text += "\nControl-C ends it, and so does closing this terminal.";
    return text;
}

} // namespace

std::string
Invitation::withPanel(const Chord& chord, const Environment& environment, StartedFrom startedFrom) {
    std::string text;
    if (!chord.keys)
        text = fmt::format("Tessarine is running, and no key brings it up: {}. To have one, {}",
                           chord.status,
                           bindingHint());
    else if (const auto limit = limitOfChords(environment))
        text = fmt::format("Tessarine is running. {} brings it up, but {}. For a key that always "
                           "does, {}",
                           *chord.keys,
                           *limit,
                           bindingHint());
    else
        text = fmt::format("Tessarine is running. {} brings it up.", *chord.keys);
    return ended(std::move(text), startedFrom);
}

std::string Invitation::withoutPanel(const Environment& environment, StartedFrom startedFrom) {
    return ended(fmt::format("Tessarine is running, but its panel can't come up: {}. The README "
                             "tells what works without it.",
                             missingDisplay(environment)),
                 startedFrom);
}

std::string Invitation::missingDisplay(const Environment& environment) {
    if (environment.hasX11)
        return "the X11 display does not answer";
    if (environment.hasWayland)
        return "there is no X11 display, and without one it is not shown on Wayland yet";
    return "there is no display";
}

std::optional<std::string> Invitation::limitOfChords(const Environment& environment) {
    if (!environment.hasWayland)
        return std::nullopt;
    return "on Wayland only while a program of X11 has the keyboard";
}

} // namespace tessarine
