#include "launcherapp/platform/linux/desktop/SystemBus.h"

#include <QByteArray>
#include <QLocalSocket>

namespace tessarine {

/// Asks which ways to authenticate there are, as D-Bus begins with a nul byte and a line.
bool busAnswers(const QString& address, std::chrono::milliseconds patience) {
    const auto prefix = QStringLiteral("unix:path=");
    if (!address.startsWith(prefix))
        return true;
    const auto path = address.mid(prefix.size()).section(QLatin1Char(','), 0, 0).toUtf8();
    const auto wait = static_cast<int>(patience.count());
    QLocalSocket socket;
    socket.connectToServer(QString::fromUtf8(QByteArray::fromPercentEncoding(path)));
    if (!socket.waitForConnected(wait))
        return false;
    socket.write(QByteArray("\0AUTH\r\n", 7));
    return socket.waitForReadyRead(wait);
}

/// Qt's one thread for all buses would wait for the greeting, and whoever wants anything of the
/// session's bus, the main thread too, would wait for Qt's thread: so it never meets a bus that
/// hangs.
QDBusConnection systemBus(const QString& name, std::chrono::milliseconds patience) {
    const auto address = qEnvironmentVariable(
        "DBUS_SYSTEM_BUS_ADDRESS", QStringLiteral("unix:path=/run/dbus/system_bus_socket"));
    if (!busAnswers(address, patience))
        return QDBusConnection(QString());
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
    // Qt gives the same broken connection again for a name that it has kept.
    if (!bus.isConnected())
        QDBusConnection::disconnectFromBus(name);
    return bus;
}

} // namespace tessarine
