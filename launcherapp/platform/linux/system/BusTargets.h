#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

#include <optional>
#include <utility>

/// Objects on the buses that more than one effect speaks to.
namespace tessarine::BusTargets {

/// The bus itself, for the names on it.
inline constexpr BusTarget bus{
    "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};

inline constexpr BusTarget logind{
    "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager"};

/// A session of logind's, by its object path, which must stay as long as the result.
constexpr BusTarget logindSession(const char* path) {
    return {logind.service, path, "org.freedesktop.login1.Session"};
}

/// A call to our own session, which may ask the user for a password; nothing if logind knows none.
inline std::optional<BusRequest> ownSession(const EffectContext& context, const char* method) {
    if (!context.system || !context.facts.logind || !context.facts.logind->session)
        return std::nullopt;
    auto message = logindSession(context.facts.logind->session->c_str()).call(method);
    message.setInteractiveAuthorizationAllowed(true);
    return BusRequest{*context.system, std::move(message), context.doors->patience.user};
}

/// The desktop portal's way to take pictures of the screen.
inline constexpr BusTarget portalScreenshot{"org.freedesktop.portal.Desktop",
                                            "/org/freedesktop/portal/desktop",
                                            "org.freedesktop.portal.Screenshot"};

/// What reads and writes the properties of an object.
constexpr BusTarget propertiesOf(const BusTarget& target) {
    return {target.service, target.path, "org.freedesktop.DBus.Properties"};
}

} // namespace tessarine::BusTargets
