#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QFile>

namespace tessarine {

std::optional<QDBusConnection> sessionBus() {
    const bool named = !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS");
    const auto runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!named && (runtime.isEmpty() || !QFile::exists(runtime + QStringLiteral("/bus"))))
        return std::nullopt;
    auto bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

} // namespace tessarine
