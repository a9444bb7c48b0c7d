#include "launcherapp/platform/linux/system/screen/ScreenEffects.h"

#include "launcherapp/platform/linux/system/screen/ScreenSavers.h"

#include <QDBusVariant>
#include <QString>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// Mutter's number for screens that are off.
constexpr int powerSaveOff = 3;

std::optional<EffectWay> displaysOff(const EffectContext& context) {
    const auto& facts = context.facts;
    const auto run = [&](const char* program, std::vector<std::string> options) {
        return EffectWays::program(context.doors,
                                   facts.commandLine(program, std::move(options)),
                                   context.doors->patience.question);
    };
    if (facts.isPlainX11() && facts.hasProgram("xset"))
        return run("xset", {"dpms", "force", "off"});
    if (facts.kind() == DesktopKind::kde && facts.hasProgram("kscreen-doctor"))
        return run("kscreen-doctor", {"--dpms", "off"});
    if (context.session && facts.owns("org.gnome.Mutter.DisplayConfig")) {
        constexpr BusTarget displays{"org.gnome.Mutter.DisplayConfig",
                                     "/org/gnome/Mutter/DisplayConfig",
                                     "org.freedesktop.DBus.Properties"};
        return EffectWays::call(*context.session,
                                displays.call("Set",
                                              {QStringLiteral("org.gnome.Mutter.DisplayConfig"),
                                               QStringLiteral("PowerSaveMode"),
                                               QVariant::fromValue(QDBusVariant(powerSaveOff))}),
                                context.doors->patience.question);
    }
    return std::nullopt;
}

std::string whyDisplaysStayOn(const DesktopFacts& facts) {
    if (facts.isPlainX11())
        return "xset, which turns screens off, is not installed";
    if (facts.kind() == DesktopKind::kde)
        return "kscreen-doctor, which turns screens off, is not installed";
    if (!facts.isWayland())
        return "there is no screen";
    // Wayland compositors of the wlroots kind turn screens off at a command, but no key wakes them.
    return "no way is known here that a key would undo";
}

} // namespace

Effect ScreenEffects::sleepDisplays(const EffectContext& context) {
    auto way = displaysOff(context);
    if (!way)
        return Effect::missing(whyDisplaysStayOn(context.facts));
    return Effect::by(
        EffectWays::after(context.doors, context.doors->patience.keyRelease, *std::move(way)));
}

Effect ScreenEffects::startScreenSaver(const EffectContext& context) {
    const auto& facts = context.facts;
    auto calls = ScreenSavers::calls(
        context, &ScreenSavers::Saver::activate, context.doors->patience.question);
    std::vector<EffectWay> ways;
    const auto add = [&](const char* program, std::vector<std::string> options) {
        ways.push_back(EffectWays::program(context.doors,
                                           facts.commandLine(program, std::move(options)),
                                           context.doors->patience.question));
    };
    if (facts.hasProgram("xscreensaver-command") && facts.running.contains("xscreensaver"))
        add("xscreensaver-command", {"-activate"});
    if (facts.isPlainX11() && facts.hasProgram("xset"))
        add("xset", {"s", "activate"}); // the X server's own
    if (calls.empty() && ways.empty())
        return Effect::missing("no screen saver runs here");
    return Effect::by(EffectWays::after(context.doors,
                                        context.doors->patience.keyRelease,
                                        EffectWays::firstOf(std::move(calls), std::move(ways))));
}

} // namespace tessarine
