#include "launcherapp/platform/linux/system/session/LogindPower.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

/// "challenge" and "yes" can be had; so can what a later logind may say beside these.
Effect power(const EffectContext& context,
             std::string LogindFacts::*answer,
             const char* method,
             const char* doing) {
    if (!context.system || !context.facts.logind)
        return Effect::missing("there is no logind on this system");
    const auto& says = (*context.facts.logind).*answer;
    if (says == "na")
        return Effect::missing(fmt::format("this machine can't {}", doing));
    if (says == "no")
        return Effect::missing(fmt::format("you may not {} this machine", doing));
    constexpr BusTarget manager{
        "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"};
    // True: the user may be asked for a password.
    auto message = manager.call(method, {true});
    message.setInteractiveAuthorizationAllowed(true);
    return Effect::by(
        EffectWays::call(*context.system, std::move(message), context.doors->patience.user));
}

} // namespace

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
