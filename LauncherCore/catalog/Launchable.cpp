#include "LauncherCore/catalog/Launchable.h"

#include "LauncherCore/catalog/ExecLine.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>

namespace tessarine {

namespace {

bool hasText(const DesktopEntry& info, std::string_view key) {
    return !Folding::trimmed(info.text(key).value_or("")).empty();
}

/// Whether the entry can be named and started at all.
bool isComplete(const DesktopEntry& info) {
    if (!hasText(info, "Name"))
        return false;
    const auto exec = info.text("Exec");
    if (!exec || Folding::trimmed(*exec).empty())
        return info.flag("DBusActivatable");
    return ExecLine::words(*exec).has_value();
}

/// The first of the session's desktops that either list speaks of decides; when none does, an
/// entry with a list of its own desktops is for others.
bool isForDesktops(const DesktopEntry& info, std::span<const std::string> desktops) {
    const auto only = info.list("OnlyShowIn");
    const auto notIn = info.list("NotShowIn");
    for (const auto& desktop : desktops) {
        if (std::ranges::count(only, desktop) > 0)
            return true;
        if (std::ranges::count(notIn, desktop) > 0)
            return false;
    }
    return !info.raw("OnlyShowIn");
}

} // namespace

bool Launchable::isLaunchable(const DesktopEntry& info) {
    if (!info.flag("NoDisplay"))
        return true;
    return !info.list("Categories").empty() || hasText(info, "Icon");
}

Launchable::Verdict Launchable::verdict(const DesktopEntry& info, const Session& session) {
    if (info.text("Type").value_or("") != "Application")
        return Verdict::notAnApplication;
    if (info.flag("Hidden"))
        return Verdict::deleted;
    if (!isComplete(info))
        return Verdict::incomplete;
    if (const auto program = info.text("TryExec");
        program && !program->empty() && !session.canExecute(*program))
        return Verdict::programMissing;
    if (!isForDesktops(info, session.currentDesktops))
        return Verdict::otherDesktop;
    return Verdict::offered;
}

} // namespace tessarine
