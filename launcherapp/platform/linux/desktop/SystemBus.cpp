#include "launcherapp/platform/linux/desktop/SystemBus.h"

#include <QByteArray>
#include <QLocalSocket>

namespace tessarine {

namespace {

/// The socket's file; empty where the bus is reached in another way.
QString systemSocket() {
    const auto address = qEnvironmentVariable(
        "DBUS_SYSTEM_BUS_ADDRESS", QStringLiteral("unix:path=/run/dbus/system_bus_socket"));
    const auto path = QStringLiteral("unix:path=");
    return address.startsWith(path) ? address.mid(path.size()).section(QLatin1Char(','), 0, 0)
                                    : QString();
}

/// Asks which ways to authenticate there are, as D-Bus begins with a nul byte and a line.
bool answers(const QString& socketPath, std::chrono::milliseconds patience) {
    const auto wait = static_cast<int>(patience.count());
    QLocalSocket socket;
    socket.connectToServer(socketPath);
    if (!socket.waitForConnected(wait))
        return false;
    socket.write(QByteArray("\0AUTH\r\n", 7));
    return socket.waitForReadyRead(wait);
}

} // namespace

/// Qt's one thread for all buses would wait for the greeting, and whoever wants anything of the
/// session's bus, the main thread too, would wait for Qt's thread: so it never meets a bus that
/// hangs.
QDBusConnection systemBus(const QString& name, std::chrono::milliseconds patience) {
    const auto socket = systemSocket();
    if (!socket.isEmpty() && !answers(socket, patience))
        return QDBusConnection(QString());
    return QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
}

} // namespace tessarine
