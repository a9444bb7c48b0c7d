#pragma once

#include "launcherapp/platform/Ability.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The desktops whose own ways are known.
enum class DesktopKind { gnome, budgie, kde, xfce, cinnamon, mate, lxqt, pantheon, other };

/// Whether this user may do something to the machine.
enum class LogindAnswer {
    unknown, ///< not answered, or in a word of a later logind
    yes,
    challenge, ///< after a password
    no,        ///< not this user
    unable,    ///< not this machine
};

/// From logind's own word: "yes", "challenge", "no", "na".
LogindAnswer logindAnswer(std::string_view word);

/// What logind says it can do for this user.
struct LogindFacts {
    LogindAnswer canRestart = LogindAnswer::unknown;
    LogindAnswer canPowerOff = LogindAnswer::unknown;
    LogindAnswer canSleep = LogindAnswer::unknown;
    std::optional<std::string> session; ///< object path of our own
};

/// What this desktop was found to have. Every ability is decided from these alone. A value.
struct DesktopFacts {
    std::vector<std::string> desktops; ///< XDG_CURRENT_DESKTOP, in order
    bool hasX11 = false;               ///< DISPLAY is set
    bool hasWayland = false;           ///< WAYLAND_DISPLAY is set
    /// What XDG_SESSION_TYPE and logind call the session: "x11", "wayland", "tty".
    std::set<std::string> sessionTypes;
    std::string folderOpener;                    ///< see SystemDoors
    std::map<std::string, std::string> programs; ///< of those that matter here: path by name
    std::set<std::string> running;               ///< names of the user's processes, cut to 15 bytes
    std::set<std::string> owned;                 ///< names on the session bus
    std::set<std::string> startable;             ///< names that the session bus would start
    std::set<std::string> schemas;               ///< of GSettings
    bool portalTakesPictures = false;
    std::optional<LogindFacts> logind; ///< nothing when there is none
    bool hasUDisks = false;

    DesktopKind kind() const;

    /// As its users call it; "this desktop" for one that isn't known.
    std::string desktopName() const;

    /// Whether anything says that a Wayland compositor draws here. A program that was kept off it
    /// has no WAYLAND_DISPLAY, but its X server is one that the compositor has started.
    bool isWayland() const {
        return hasWayland || sessionTypes.contains("wayland") || running.contains("Xwayland");
    }

    /// X11 is what draws here, and no Wayland compositor's stand-in for it.
    bool isPlainX11() const { return hasX11 && !isWayland(); }

    /// The same where somebody has said so too: for what would end a Wayland session.
    bool isSurelyX11() const { return isPlainX11() && sessionTypes.contains("x11"); }

    /// What starts a program, by its path; it must be there.
    std::vector<std::string> commandLine(std::string_view name,
                                         std::vector<std::string> options) const;

    bool hasProgram(std::string_view name) const { return programs.contains(std::string(name)); }

    bool owns(std::string_view name) const { return owned.contains(std::string(name)); }

    bool answers(std::string_view name) const {
        return owns(name) || startable.contains(std::string(name));
    }
};

/// Finding facts that need the disk alone. Any thread but the main one.
namespace DesktopFinds {

/// Those of the programs that are somewhere in the folders, the first of each.
std::map<std::string, std::string> programs(const std::vector<std::string>& folders);

/// The names of a user's processes below the folder "/proc".
std::set<std::string> running(const std::string& processFolder, unsigned user);

} // namespace DesktopFinds
} // namespace tessarine
