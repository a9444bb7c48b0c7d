#include "launcherapp/platform/linux/system/session/LogindPower.h"

#include "launcherapp/platform/linux/system/BusTargets.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

using Answer = LogindAnswer LogindFacts::*;

std::optional<std::string>
whyNot(const DesktopFacts& facts, Answer answer, std::string_view doing) {
    switch (facts.logind ? (*facts.logind).*answer : LogindAnswer::unknown) {
    case LogindAnswer::unable:
        return fmt::format("this machine can't {}", doing);
    case LogindAnswer::no:
        return fmt::format("you may not {} this machine", doing);
    case LogindAnswer::unknown:
    case LogindAnswer::yes:
    case LogindAnswer::challenge:
        return std::nullopt;
    }
    return std::nullopt;
}

Effect
power(const EffectContext& context, Answer answer, const char* method, std::string_view doing) {
    if (!context.system || !context.facts.logind)
        return Effect::missing("there is no logind on this system");
    if (auto why = whyNot(context.facts, answer, doing))
        return Effect::missing(*std::move(why));
    // True: the user may be asked for a password.
    auto message = BusTargets::logind.call(method, {true});
    message.setInteractiveAuthorizationAllowed(true);
    return Effect::by(
        EffectWays::call(*context.system, std::move(message), context.doors->patience.user));
}

} // namespace

std::optional<std::string> LogindPower::whyNoRestart(const DesktopFacts& facts) {
    return whyNot(facts, &LogindFacts::canRestart, "restart");
}

std::optional<std::string> LogindPower::whyNoPowerOff(const DesktopFacts& facts) {
    return whyNot(facts, &LogindFacts::canPowerOff, "shut down");
}

Effect LogindPower::restart(const EffectContext& context) {
    return power(context, &LogindFacts::canRestart, "Reboot", "restart");
}

Effect LogindPower::powerOff(const EffectContext& context) {
    return power(context, &LogindFacts::canPowerOff, "PowerOff", "shut down");
}

Effect LogindPower::sleep(const EffectContext& context) {
    return power(context, &LogindFacts::canSleep, "Suspend", "suspend");
}

} // namespace tessarine
