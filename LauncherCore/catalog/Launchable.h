#pragma once

#include "LauncherCore/catalog/DesktopEntry.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

/// Which desktop entries are applications that a person starts. Pure; any thread.
namespace tessarine::Launchable {

/// Whether an entry that may ask for no display is still an application that a person starts.
/// NoDisplay marks helpers, but also whole applications; one that has a category or an icon is
/// listed all the same, and one with neither (a bare URL handler) is not.
bool isLaunchable(const DesktopEntry& info);

/// What the running desktop tells about whether an entry is meant for it.
struct Session {
    std::span<const std::string> currentDesktops; ///< XDG_CURRENT_DESKTOP, in order
    /// Whether a program, a path or a bare name, can be executed.
    std::function<bool(std::string_view program)> canExecute;
};

/// Why a well-formed entry must not be offered in this session, or of what it lacks, in words;
/// empty when it may. Looks at Type, Hidden, Name, Exec and its quoting, DBusActivatable, TryExec,
/// OnlyShowIn and NotShowIn, but not at NoDisplay, which is `isLaunchable`'s.
enum class Verdict {
    offered,
    notAnApplication, ///< Type is not "Application"
    incomplete,       ///< no Name, or neither an Exec nor bus activation, or unbalanced quotes
    deleted,          ///< Hidden=true: the user removed it
    otherDesktop,     ///< OnlyShowIn or NotShowIn leaves this desktop out
    programMissing,   ///< TryExec names a program that isn't there
};
Verdict verdict(const DesktopEntry& info, const Session& session);

} // namespace tessarine::Launchable
