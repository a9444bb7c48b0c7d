#pragma once

#include <QDBusConnection>
#include <optional>
#include <string>

namespace tessarine {

/// Where the user's session bus is, as D-Bus addresses are written: what the environment names,
/// else the usual socket where that exists; nothing when there is neither. Any thread.
std::optional<std::string> sessionBusAddress();

/// The user's session bus; nothing when none runs. The library alone would try to start one.
/// Main thread only; the first call waits for the bus's greeting.
std::optional<QDBusConnection> sessionBus();

} // namespace tessarine
