#pragma once

#include <QDBusConnection>
#include <optional>

namespace tessarine {

/// The user's session bus; nothing when none runs. The library alone would try to start one.
/// Main thread only; the first call waits for the bus's greeting.
std::optional<QDBusConnection> sessionBus();

} // namespace tessarine
