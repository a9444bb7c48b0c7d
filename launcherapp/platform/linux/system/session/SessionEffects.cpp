#include "launcherapp/platform/linux/system/session/SessionEffects.h"

#include "launcherapp/platform/linux/system/BusTargets.h"
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

/// Programs that do nothing but wait for logind to ask for the lock. swayidle may wait for it, or
/// for other things alone, and nobody can tell from outside.
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

enum class PanelProgram {
    isTheNewPanel, ///< and takes the old one's place
    asksThePanel,  ///< which starts itself anew
};

struct Panel {
    DesktopKind desktop;
    const char* program;
    std::vector<std::string> options;
    PanelProgram kind;
};

std::vector<Panel> panels() {
    using enum PanelProgram;
    return {
        {DesktopKind::kde, "plasmashell", {"--replace"}, isTheNewPanel},
        {DesktopKind::xfce, "xfce4-panel", {"-r"}, asksThePanel},
        {DesktopKind::mate, "mate-panel", {"--replace"}, isTheNewPanel},
        {DesktopKind::budgie, "budgie-panel", {"--replace"}, isTheNewPanel},
        {DesktopKind::cinnamon, "cinnamon", {"--replace"}, isTheNewPanel},
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

Effect SessionEffects::lock(const EffectContext& context) {
    const auto& facts = context.facts;
    // Plasma's answers only once the screen is locked.
    auto calls =
        ScreenSavers::calls(context, &ScreenSavers::Saver::lock, context.doors->patience.act);
    if (auto call = BusTargets::ownSession(context, "Lock"); call && runsAny(facts))
        calls.push_back(*std::move(call));
    std::vector<EffectWay> ways;
    if (facts.hasProgram("xscreensaver-command") && facts.running.contains("xscreensaver"))
        ways.push_back(EffectWays::program(context.doors,
                                           facts.commandLine("xscreensaver-command", {"-lock"}),
                                           context.doors->patience.question));
    for (const auto& [name, options] : lockPrograms(facts)) {
        if (facts.hasProgram(name))
            ways.push_back(EffectWays::detached(context.doors, facts.commandLine(name, options)));
    }
    return Effect::byFirst(std::move(calls),
                           std::move(ways),
                           facts.isPlainX11()
                               ? "nothing here locks the screen; xss-lock or i3lock would"
                               : "nothing here locks the screen; swaylock would");
}

Effect SessionEffects::restartShell(const EffectContext& context) {
    const auto& facts = context.facts;
    const auto kind = facts.kind();
    if (isCompositor(kind) && !facts.isSurelyX11())
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
    for (auto& [desktop, program, options, programKind] : panels()) {
        if (desktop != kind || !facts.hasProgram(program))
            continue;
        auto arguments = facts.commandLine(program, options);
        ways.push_back(programKind == PanelProgram::isTheNewPanel
                           ? EffectWays::detached(context.doors, std::move(arguments))
                           : EffectWays::program(
                                 context.doors, std::move(arguments), context.doors->patience.act));
    }
    return Effect::byFirst(
        std::move(ways),
        fmt::format("it is not known how {} starts its panel anew", facts.desktopName()));
}

} // namespace tessarine
