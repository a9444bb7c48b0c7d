#include "launcherapp/platform/DesktopTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>

namespace tessarine {

namespace {

using enum DesktopCell::State;
using Surroundings = DesktopSurroundings;

const DesktopCell fine;

DesktopCell absentAs(std::string reason) {
    return {.state = absent, .reason = std::move(reason)};
}

DesktopCell degradedAs(std::string reason) {
    return {.state = degraded, .reason = std::move(reason)};
}

bool offersAny(const Surroundings& desktop, std::initializer_list<const char*> interfaces) {
    return std::ranges::any_of(interfaces,
                               [&](const char* each) { return desktop.globals.contains(each); });
}

bool offersFrom(const Surroundings& desktop, std::string_view beginning) {
    return std::ranges::any_of(
        desktop.globals, [&](const std::string& each) { return each.starts_with(beginning); });
}

/// Where X11 alone, or Wayland, decides.
bool isX11(const Surroundings& desktop) {
    return !desktop.hasWayland && desktop.hasX11;
}

DesktopCell panel(const Surroundings& desktop) {
    if (desktop.hasWayland && desktop.isShownOnX11)
        return degradedAs("Qt shows it on the display for X11 programs (QT_QPA_PLATFORM says so, "
                          "or the package qt6-wayland is missing), where it may not get the keys");
    if (isX11(desktop) || offersAny(desktop, {"zwlr_layer_shell_v1"}))
        return fine;
    return degradedAs("this desktop lets no program put a panel above the windows, so it comes up "
                      "as an ordinary window");
}

DesktopCell hotkey(const Surroundings& desktop) {
    // On a compositor's display for X11 programs only their own keys are seen.
    const bool takesKeys = isX11(desktop) && !desktop.isX11Compositors;
    if (takesKeys || desktop.portals.contains("GlobalShortcuts"))
        return fine;
    if (!desktop.hasSessionBus)
        return absentAs(std::string(DesktopTable::noSessionBus));
    return degradedAs("this desktop's portal gives programs no keys: bind a key of the desktop's "
                      "own to the program, as it says at its start");
}

DesktopCell clipboardHistory(const Surroundings& desktop) {
    if (isX11(desktop) || DesktopTable::showsClipboard(desktop))
        return fine;
    // Mutter keeps the X11 selection the same as its clipboard at all times, whichever program has
    // the focus; other compositors do so while a window of X11 has it.
    if (desktop.hasX11 && DesktopTable::family(desktop) == DesktopFamily::mutter)
        return fine;
    std::string reason(DesktopTable::hiddenClipboard);
    if (desktop.hasX11)
        return degradedAs(reason + ", so only what reaches the display for X11 programs is seen");
    return absentAs(reason + ", so nothing is recorded, and nothing can be copied from here");
}

DesktopCell typing(const Surroundings& desktop) {
    if (isX11(desktop) && desktop.isX11Compositors)
        return absentAs("this program was kept off the Wayland compositor, and the display that it "
                        "has for X11 programs reaches no others");
    if (isX11(desktop) || offersAny(desktop, {"zwp_virtual_keyboard_manager_v1"}))
        return fine;
    std::string reason(DesktopTable::noKeys);
    if (clipboardHistory(desktop).state == absent)
        return absentAs(std::move(reason));
    return absentAs(reason + ": what is chosen is copied, and Ctrl+V pastes it");
}

bool tellsTaskBars(const Surroundings& desktop) {
    return offersAny(desktop, {"zwlr_foreign_toplevel_manager_v1"});
}

/// Whether the compositor has an interface of its own for windows.
bool hasOwnWay(const Surroundings& desktop) {
    return desktop.hasSway || desktop.hasHyprland || desktop.hasKWinScripts;
}

/// Without a list of its own, the display for X11 programs still has theirs.
DesktopCell runningApplications(const Surroundings& desktop) {
    if (isX11(desktop) || hasOwnWay(desktop) || tellsTaskBars(desktop))
        return fine;
    if (desktop.hasX11)
        return degradedAs("this desktop tells no program which windows are open, so only those of "
                          "X11 programs are seen");
    return absentAs("this desktop tells no program which windows are open");
}

DesktopCell windowVerbs(const Surroundings& desktop) {
    if (isX11(desktop) || hasOwnWay(desktop))
        return fine;
    std::string reason(DesktopTable::windowsStay);
    if (desktop.hasX11 && !tellsTaskBars(desktop))
        return degradedAs(reason + " but those of X11 programs");
    return absentAs(std::move(reason));
}

DesktopCell activationTokens(const Surroundings& desktop) {
    if (desktop.hasWayland && desktop.isShownOnX11)
        return degradedAs("Qt is on the display for X11 programs, so they alone come forward when "
                          "they are started");
    if (isX11(desktop) || offersAny(desktop, {"xdg_activation_v1"}))
        return fine;
    return absentAs("this desktop has no way to pass the focus on to what is started");
}

DesktopCell appearance(const Surroundings& desktop) {
    if (desktop.portals.contains("Settings"))
        return fine;
    return degradedAs("no settings portal tells light or dark, so the program's own setting "
                      "decides");
}

struct Line {
    DesktopAbility ability;
    std::string_view name;
    DesktopCell (*decide)(const Surroundings& desktop);
};

constexpr std::array lines{
    Line{DesktopAbility::panel, "panel", panel},
    Line{DesktopAbility::hotkey, "hotkey", hotkey},
    Line{DesktopAbility::clipboardHistory, "clipboard history", clipboardHistory},
    Line{DesktopAbility::typing, "pasting and typing", typing},
    Line{DesktopAbility::runningApplications, "running applications", runningApplications},
    Line{DesktopAbility::windowVerbs, "window verbs", windowVerbs},
    Line{DesktopAbility::activationTokens, "activation tokens", activationTokens},
    Line{DesktopAbility::appearance, "appearance", appearance},
};

const Line& lineOf(DesktopAbility ability) {
    return *std::ranges::find(lines, ability, &Line::ability);
}

const std::set<std::string> commonGlobals{"wl_compositor", "wl_seat", "xdg_activation_v1"};

std::set<std::string> withCommon(std::set<std::string> globals) {
    globals.insert(commonGlobals.begin(), commonGlobals.end());
    return globals;
}

} // namespace

/// KWin offers some of the protocols that wlroots has brought up, so it is looked for first; and
/// wlroots' desktops offer an old one of KWin's for the borders of windows.
DesktopFamily DesktopTable::family(const DesktopSurroundings& surroundings) {
    if (!surroundings.hasWayland)
        return surroundings.hasX11 ? DesktopFamily::x11 : DesktopFamily::none;
    if (isKWin(surroundings) || surroundings.busNames.contains("org.kde.KWin"))
        return DesktopFamily::kwin;
    if (offersFrom(surroundings, "gtk_shell") ||
        surroundings.busNames.contains("org.gnome.Mutter.DisplayConfig"))
        return DesktopFamily::mutter;
    if (offersFrom(surroundings, "zwlr_"))
        return DesktopFamily::wlroots;
    return DesktopFamily::otherWayland;
}

bool DesktopTable::isKWin(const DesktopSurroundings& surroundings) {
    return offersFrom(surroundings, "org_kde_plasma_");
}

bool DesktopTable::isSilent(const DesktopSurroundings& surroundings) {
    return surroundings.hasWayland && surroundings.globals.empty();
}

bool DesktopTable::showsClipboard(const DesktopSurroundings& surroundings) {
    return offersAny(surroundings, {"ext_data_control_manager_v1", "zwlr_data_control_manager_v1"});
}

DesktopCell DesktopTable::cell(const DesktopSurroundings& surroundings, DesktopAbility ability) {
    if (family(surroundings) == DesktopFamily::none)
        return absentAs("there is no display");
    // A compositor's own interface is another connection, and answers where its display doesn't.
    const bool isAsked = (ability == DesktopAbility::runningApplications ||
                          ability == DesktopAbility::windowVerbs) &&
                         (surroundings.hasSway || surroundings.hasHyprland);
    if (isSilent(surroundings) && !isAsked)
        return absentAs(std::string(silentCompositor));
    return lineOf(ability).decide(surroundings);
}

std::string DesktopTable::reason(const DesktopSurroundings& surroundings, DesktopAbility ability) {
    const auto told = cell(surroundings, ability);
    return told.reason.empty()
               ? fmt::format("{} should work on {}, and the desktop does not answer",
                             name(ability),
                             name(family(surroundings)))
               : told.reason;
}

std::string_view DesktopTable::name(DesktopFamily family) {
    switch (family) {
    case DesktopFamily::x11:
        return "X11";
    case DesktopFamily::wlroots:
        return "wlroots";
    case DesktopFamily::kwin:
        return "KWin";
    case DesktopFamily::mutter:
        return "Mutter";
    case DesktopFamily::otherWayland:
        return "another Wayland compositor";
    case DesktopFamily::none:
        break;
    }
    return "no display";
}

std::string_view DesktopTable::name(DesktopAbility ability) {
    return lineOf(ability).name;
}

std::string DesktopTable::inWords(const DesktopCell& cell) {
    switch (cell.state) {
    case works:
        break;
    case degraded:
        return "degraded: " + cell.reason;
    case absent:
        return "absent: " + cell.reason;
    }
    return "works";
}

DesktopSurroundings DesktopTable::usual(DesktopFamily family) {
    const std::set<std::string> allPortals{"GlobalShortcuts", "Settings"};
    switch (family) {
    case DesktopFamily::x11:
        return {.hasX11 = true, .hasSessionBus = true, .portals = allPortals};
    case DesktopFamily::wlroots:
        return {.hasX11 = true,
                .hasWayland = true,
                .hasSessionBus = true,
                .hasSway = true,
                .desktops = {"sway"},
                .globals = withCommon({"zwlr_layer_shell_v1",
                                       "zwlr_data_control_manager_v1",
                                       "zwp_virtual_keyboard_manager_v1",
                                       "zwlr_foreign_toplevel_manager_v1"}),
                .portals = {"Settings"}};
    case DesktopFamily::kwin:
        return {.hasX11 = true,
                .hasWayland = true,
                .hasSessionBus = true,
                .hasKWinScripts = true,
                .desktops = {"KDE"},
                .globals = withCommon(
                    {"zwlr_layer_shell_v1", "ext_data_control_manager_v1", "org_kde_plasma_shell"}),
                .portals = allPortals};
    case DesktopFamily::mutter:
        return {.hasX11 = true,
                .hasWayland = true,
                .hasSessionBus = true,
                .desktops = {"GNOME"},
                .globals = withCommon({"gtk_shell1"}),
                .portals = allPortals};
    case DesktopFamily::otherWayland:
    case DesktopFamily::none:
        break;
    }
    return {};
}

std::vector<std::string> DesktopTable::column(const DesktopSurroundings& surroundings) {
    std::vector<std::string> text{fmt::format("desktop: {}", name(family(surroundings)))};
    for (const auto each : abilities)
        text.push_back(fmt::format("{}: {}", name(each), inWords(cell(surroundings, each))));
    return text;
}

} // namespace tessarine
