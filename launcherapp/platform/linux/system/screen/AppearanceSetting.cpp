#include "launcherapp/platform/linux/system/screen/AppearanceSetting.h"

#include "launcherapp/platform/linux/system/BusTargets.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace tessarine {

namespace {

/// How the setting is written, and read where the settings portal can't be believed to be quick.
struct Setting {
    std::vector<std::string> dark;
    std::vector<std::string> light;
    std::vector<std::string> read; ///< prints 'prefer-dark' for dark; empty: ask the doors
};

/// A setting, or why there is none.
using Found = std::variant<Setting, std::string>;

Found byGSettings(const DesktopFacts& facts, const char* schema, const char* lightValue) {
    if (!facts.hasProgram("gsettings"))
        return "gsettings, which sets it, is not installed";
    if (!facts.schemas.contains(schema))
        return fmt::format("{} has no setting for it", facts.desktopName());
    const auto line = [&](std::vector<std::string> words) {
        words.insert(words.begin() + 1, {schema, "color-scheme"});
        return facts.commandLine("gsettings", std::move(words));
    };
    return Setting{.dark = line({"set", "prefer-dark"}),
                   .light = line({"set", lightValue}),
                   .read = line({"get"})};
}

/// GNOME's own settings write 'default' for light. Elsewhere programs may take that for no wish.
/// Compositors without settings of their own have GNOME's passed on by the GTK portal, which is
/// how their users switch.
Found settingOf(const DesktopFacts& facts) {
    constexpr auto gnomeSchema = "org.gnome.desktop.interface";
    switch (facts.kind()) {
    case DesktopKind::gnome:
    case DesktopKind::budgie:
        return byGSettings(facts, gnomeSchema, "default");
    case DesktopKind::cinnamon:
        return byGSettings(facts, "org.x.apps.portal", "prefer-light");
    case DesktopKind::kde:
        if (!facts.hasProgram("plasma-apply-colorscheme"))
            return "plasma-apply-colorscheme, which sets it, is not installed";
        return Setting{.dark = facts.commandLine("plasma-apply-colorscheme", {"BreezeDark"}),
                       .light = facts.commandLine("plasma-apply-colorscheme", {"BreezeLight"}),
                       .read = {}};
    case DesktopKind::xfce:
    case DesktopKind::mate:
    case DesktopKind::lxqt:
        return fmt::format("{} has no such setting for other programs to change",
                           facts.desktopName());
    case DesktopKind::pantheon:
        return fmt::format("it is not known how {} sets it", facts.desktopName());
    case DesktopKind::other:
        if (!facts.answers(BusTargets::portalScreenshot.service))
            return "no settings portal passes it on to programs here";
        return byGSettings(facts, gnomeSchema, "prefer-light");
    }
    return "the desktop is not known";
}

EffectWay write(const EffectWays::Doors& doors, const std::vector<std::string>& arguments) {
    return EffectWays::program(doors, arguments, doors->patience.question);
}

Effect to(const EffectContext& context, std::vector<std::string> Setting::*scheme) {
    const auto found = settingOf(context.facts);
    if (const auto* why = std::get_if<std::string>(&found))
        return Effect::missing(*why);
    return Effect::by(write(context.doors, std::get<Setting>(found).*scheme));
}

EffectWay toggling(const EffectWays::Doors& doors, Setting setting) {
    return [doors, setting = std::move(setting)](EffectDone done) {
        const auto turn = [doors, setting, done](bool isDark) {
            write(doors, isDark ? setting.light : setting.dark)(done);
        };
        if (setting.read.empty())
            return turn(doors->colorScheme() == ColorScheme::dark);
        EffectWays::readProgram(doors,
                                setting.read,
                                doors->patience.question,
                                [turn, done](const EffectWays::ProgramAnswer& answer) {
                                    if (answer.problem)
                                        done(answer.problem);
                                    else
                                        turn(answer.output == "'prefer-dark'");
                                });
    };
}

} // namespace

Effect AppearanceSetting::dark(const EffectContext& context) {
    return to(context, &Setting::dark);
}

Effect AppearanceSetting::light(const EffectContext& context) {
    return to(context, &Setting::light);
}

Effect AppearanceSetting::toggle(const EffectContext& context) {
    auto found = settingOf(context.facts);
    if (const auto* why = std::get_if<std::string>(&found))
        return Effect::missing(*why);
    return Effect::by(toggling(context.doors, std::get<Setting>(std::move(found))));
}

/// Extensions and services do it on some desktops, each with a switch of its own.
Effect AppearanceSetting::automatic(const EffectContext& context) {
    return Effect::missing(fmt::format("{} has no switch for it that other programs may turn",
                                       context.facts.desktopName()));
}

} // namespace tessarine
