#include "launcherapp/platform/linux/system/session/SessionEffects.h"

#include "launcherapp/platform/linux/system/screen/ScreenSavers.h"

#include <fmt/format.h>

#include <QString>
#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr auto logindSession = "org.freedesktop.login1.Session";

/// On our own session, if logind knows it.
std::optional<EffectWay> askLogind(const EffectContext& context, const char* method) {
    if (!context.system || !context.facts.logind || !context.facts.logind->session)
        return std::nullopt;
    const auto& path = *context.facts.logind->session;
    const BusTarget session{"org.freedesktop.login1", path.c_str(), logindSession};
    auto message = session.call(method);
    message.setInteractiveAuthorizationAllowed(true);
    return EffectWays::call(*context.system, std::move(message), context.doors->patience.user);
}

struct SessionManager {
    BusTarget target;
    const char* method;
    QVariantList values;
};

/// Which of them runs tells the desktop better than any variable. GNOME's name is taken by
/// Cinnamon's, MATE's and Budgie's session managers too.
std::vector<SessionManager> sessionManagers() {
    return {
        // 1: without a question.
        {{"org.gnome.SessionManager", "/org/gnome/SessionManager", "org.gnome.SessionManager"},
         "Logout",
         {1U}},
        // Plasma 6; it has no question.
        {{"org.kde.Shutdown", "/Shutdown", "org.kde.Shutdown"}, "logout", {}},
        // Plasma 5: no question, log out, as usual.
        {{"org.kde.ksmserver", "/KSMServer", "org.kde.KSMServerInterface"}, "logout", {0, 0, 0}},
        // No dialog; the session may be saved.
        {{"org.xfce.SessionManager", "/org/xfce/SessionManager", "org.xfce.Session.Manager"},
         "Logout",
         {false, true}},
    };
}

/// Programs that only wait for logind to ask for the lock.
constexpr auto listeners = std::to_array<const char*>({"light-locker", "xss-lock", "hypridle"});

struct LockProgram {
    const char* name;
    std::vector<std::string> options;
};

/// Each locks until it is given the password and ends then; the first that is installed is taken
/// for the user's choice.
std::vector<LockProgram> lockPrograms(const DesktopFacts& facts) {
    if (facts.isPlainX11())
        return {{"i3lock", {}}, {"xsecurelock", {}}, {"slock", {}}};
    return {{"swaylock", {}}, {"hyprlock", {}}, {"gtklock", {}}, {"waylock", {}}};
}

bool runsAny(const DesktopFacts& facts) {
    return std::ranges::any_of(listeners,
                               [&](const char* name) { return facts.running.contains(name); });
}

struct Panel {
    DesktopKind desktop;
    const char* program;
    std::vector<std::string> options;
    bool stays; ///< the new panel is the program itself
};

std::vector<Panel> panels() {
    return {
        {DesktopKind::kde, "plasmashell", {"--replace"}, true},
        {DesktopKind::xfce, "xfce4-panel", {"-r"}, false},
        {DesktopKind::mate, "mate-panel", {"--replace"}, true},
        {DesktopKind::budgie, "budgie-panel", {"--replace"}, true},
        {DesktopKind::cinnamon, "cinnamon", {"--replace"}, true},
    };
}

/// Plasma's, where systemd starts it: that one must not find another in its place.
EffectWay restartUnit(const EffectContext& context, const char* unit) {
    const auto systemctl = [&](const char* verb) {
        return EffectWays::program(context.doors,
                                   {context.facts.programs.at("systemctl"), "--user", verb, unit},
                                   context.doors->patience.act);
    };
    return EffectWays::allOf({systemctl("is-active"), systemctl("restart")});
}

/// On Wayland the shell is the compositor, and every program's windows go with it.
bool isCompositor(DesktopKind desktop) {
    return desktop == DesktopKind::gnome || desktop == DesktopKind::cinnamon;
}

} // namespace

Effect SessionEffects::logOut(const EffectContext& context) {
    std::vector<EffectWay> ways;
    for (const auto& [target, method, values] : sessionManagers()) {
        const bool isPlasmas = std::string_view(target.service) == "org.kde.Shutdown" &&
                               context.facts.kind() == DesktopKind::kde;
        const bool isThere = context.facts.owns(target.service) ||
                             (isPlasmas && context.facts.answers(target.service));
        if (context.session && isThere)
            ways.push_back(EffectWays::call(
                *context.session, target.call(method, values), context.doors->patience.act));
    }
    if (auto way = askLogind(context, "Terminate"); way && ways.empty())
        ways.push_back(*std::move(way));
    return Effect::byFirst(std::move(ways),
                           "neither a session manager nor logind is there to end the session");
}

Effect SessionEffects::lock(const EffectContext& context) {
    const auto& facts = context.facts;
    std::vector<EffectWay> ways;
    for (const auto& locker : ScreenSavers::present(facts)) {
        // Cinnamon's takes a message for others to read.
        const bool takesMessage = std::string_view(locker.service) == "org.cinnamon.ScreenSaver";
        const auto values = takesMessage ? QVariantList{QString()} : QVariantList();
        if (context.session)
            ways.push_back(EffectWays::call(
                *context.session, locker.call("Lock", values), context.doors->patience.question));
    }
    if (auto way = askLogind(context, "Lock"); way && runsAny(facts))
        ways.push_back(*std::move(way));
    if (facts.hasProgram("xscreensaver-command") && facts.running.contains("xscreensaver"))
        ways.push_back(EffectWays::program(context.doors,
                                           facts.commandLine("xscreensaver-command", {"-lock"}),
                                           context.doors->patience.question));
    for (const auto& [name, options] : lockPrograms(facts)) {
        if (facts.hasProgram(name))
            ways.push_back(EffectWays::detached(context.doors, facts.commandLine(name, options)));
    }
    return Effect::byFirst(std::move(ways),
                           facts.isPlainX11()
                               ? "nothing here locks the screen; xss-lock or i3lock would"
                               : "nothing here locks the screen; swaylock would");
}

Effect SessionEffects::restartShell(const EffectContext& context) {
    const auto& facts = context.facts;
    const auto kind = facts.kind();
    if (isCompositor(kind) && facts.hasWayland)
        return Effect::missing(fmt::format("{} can't restart its shell without ending the session",
                                           facts.desktopName()));
    // On X11 the hangup signal has GNOME's shell start itself anew.
    if (kind == DesktopKind::gnome && facts.hasProgram("pkill"))
        return Effect::by(EffectWays::program(
            context.doors,
            facts.commandLine(
                "pkill", {"-HUP", "-x", "-U", std::to_string(context.doors->user), "gnome-shell"}),
            context.doors->patience.question));
    std::vector<EffectWay> ways;
    if (kind == DesktopKind::kde && facts.hasProgram("systemctl"))
        ways.push_back(restartUnit(context, "plasma-plasmashell.service"));
    for (auto& [desktop, program, options, stays] : panels()) {
        if (desktop != kind || !facts.hasProgram(program))
            continue;
        auto arguments = facts.commandLine(program, options);
        ways.push_back(stays ? EffectWays::detached(context.doors, std::move(arguments))
                             : EffectWays::program(context.doors,
                                                   std::move(arguments),
                                                   context.doors->patience.act));
    }
    return Effect::byFirst(
        std::move(ways),
        fmt::format("it is not known how {} starts its panel anew", facts.desktopName()));
}

} // namespace tessarine
