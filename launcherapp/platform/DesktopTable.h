#pragma once

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What draws the windows, as far as it matters to what programs may do.
enum class DesktopFamily {
    x11,
    wlroots, ///< sway, Hyprland, river, labwc, Wayfire and others that speak the wlr protocols
    kwin,
    mutter,
    otherWayland,
    none, ///< no display
};

enum class DesktopAbility {
    panel,
    hotkey,
    clipboardHistory,
    typing, ///< and pasting
    runningApplications,
    windowVerbs,
    activationTokens,
    appearance,
};

/// What was found of the running desktop. A value.
struct DesktopSurroundings {
    bool hasX11 = false;     ///< an X11 display, a compositor's own for X11 programs too
    bool hasWayland = false; ///< a Wayland session
    bool hasSessionBus = false;
    bool isX11Compositors = false; ///< that X11 display is a Wayland compositor's own
    bool isShownOnX11 = false;     ///< Qt has this program's windows on the X11 display
    bool hasSway = false;          ///< sway's own socket takes connections
    bool hasHyprland = false;      ///< Hyprland's likewise
    bool hasKWinScripts = false;   ///< the compositor is KWin, and takes scripts
    /// The user's own file that sway reads, or would read: a path that may begin "~/".
    std::string swayConfig = "~/.config/sway/config";
    bool hasSwayConfig = false;
    bool lacksGapplication = false;    ///< the command by which a key of the desktop's own calls
    std::vector<std::string> desktops; ///< XDG_CURRENT_DESKTOP, in order
    std::set<std::string> globals;     ///< interfaces of the compositor; none if it is silent
    std::set<std::string> busNames;    ///< that are owned on the session bus
    std::set<std::string> portals;     ///< of the desktop portal's interfaces those that answer

    bool operator==(const DesktopSurroundings&) const = default;
};

/// How it stands with one ability.
struct DesktopCell {
    enum class State { works, degraded, absent };
    State state = State::works;
    std::string reason; ///< a phrase for the user, without a full stop; empty where it works

    bool operator==(const DesktopCell&) const = default;
};

/// What each desktop can do, and why not: the one place that decides it for the rows, the doors
/// and the documentation. Pure; any thread.
namespace DesktopTable {

// Reasons that a door finds out itself too, later than the table was asked.
inline constexpr std::string_view silentCompositor = "the Wayland compositor does not answer";
inline constexpr std::string_view noSessionBus =
    "there is no session bus, so no key of the desktop's can reach the program";
inline constexpr std::string_view hiddenClipboard =
    "this desktop shows the clipboard to the focused program alone";
inline constexpr std::string_view noKeys = "this desktop lets no program press keys";
inline constexpr std::string_view windowsStay =
    "this Wayland compositor lets no program move windows";

inline constexpr std::array abilities{DesktopAbility::panel,
                                      DesktopAbility::hotkey,
                                      DesktopAbility::clipboardHistory,
                                      DesktopAbility::typing,
                                      DesktopAbility::runningApplications,
                                      DesktopAbility::windowVerbs,
                                      DesktopAbility::activationTokens,
                                      DesktopAbility::appearance};

DesktopFamily family(const DesktopSurroundings& surroundings);

/// Whether the compositor that has the display is KWin, by what it offers: the session bus may have
/// another one. Of what is around only `globals` counts.
bool isKWin(const DesktopSurroundings& surroundings);

/// Whether there is a Wayland compositor that did not tell in time what it offers: the table then
/// holds for the moment alone.
bool isSilent(const DesktopSurroundings& surroundings);

/// Whether the compositor itself shows the clipboard to programs without the focus; else it is on
/// the display for X11 programs, if anywhere.
bool showsClipboard(const DesktopSurroundings& surroundings);

DesktopCell cell(const DesktopSurroundings& surroundings, DesktopAbility ability);

/// Why an ability is degraded or absent; of one that works, why what should have worked does not:
/// for a door that found the desktop otherwise than it promised.
std::string reason(const DesktopSurroundings& surroundings, DesktopAbility ability);

/// "X11", "wlroots", "KWin", "Mutter", "another Wayland compositor", "no display".
std::string_view name(DesktopFamily family);

/// "clipboard history".
std::string_view name(DesktopAbility ability);

/// "works", "degraded: REASON", "absent: REASON".
std::string inWords(const DesktopCell& cell);

/// A desktop of the family as it is commonly installed, and of its newest version: what the
/// documentation tells of. For `none` and others nothing is there.
DesktopSurroundings usual(DesktopFamily family);

/// The running desktop's column: its name, then a line for each ability.
std::vector<std::string> column(const DesktopSurroundings& surroundings);

} // namespace DesktopTable
} // namespace tessarine
