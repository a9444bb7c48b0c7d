#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QFile>

namespace tessarine {

std::optional<std::string> sessionBusAddress() {
    if (const auto named = qgetenv("DBUS_SESSION_BUS_ADDRESS"); !named.isEmpty())
        return named.toStdString();
    const auto runtime = qgetenv("XDG_RUNTIME_DIR");
    const auto socket = runtime + "/bus";
    if (runtime.isEmpty() || !QFile::exists(QFile::decodeName(socket)))
        return std::nullopt;
    return "unix:path=" + socket.toStdString();
}

std::optional<QDBusConnection> sessionBus() {
    if (!sessionBusAddress())
        return std::nullopt;
    auto bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

} // namespace tessarine
