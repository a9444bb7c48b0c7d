#include "launcherapp/platform/linux/desktop/SystemBus.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QLocalSocket>
#include <optional>
#include <utility>

namespace tessarine {

namespace {

/// The socket of a D-Bus address of one transport; nothing for one reached in another way.
struct BusSocket {
    QString name;
    QLocalSocket::SocketOptions options;
};

std::optional<BusSocket> socketOf(const QString& address) {
    const std::pair<QString, QLocalSocket::SocketOptions> kinds[] = {
        {QStringLiteral("path="), QLocalSocket::NoOptions},
        {QStringLiteral("abstract="), QLocalSocket::AbstractNamespaceOption}};
    const auto unixPrefix = QStringLiteral("unix:");
    if (!address.startsWith(unixPrefix))
        return std::nullopt;
    for (const auto& part : address.mid(unixPrefix.size()).split(QLatin1Char(','))) {
        for (const auto& [key, options] : kinds) {
            if (part.startsWith(key)) {
                const auto name = QByteArray::fromPercentEncoding(part.mid(key.size()).toUtf8());
                return BusSocket{.name = QString::fromUtf8(name), .options = options};
            }
        }
    }
    return std::nullopt;
}

/// Asks which ways to authenticate there are, as D-Bus begins with a nul byte and a line.
bool answers(const BusSocket& bus, QDeadlineTimer deadline) {
    const auto left = [&] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.setSocketOptions(bus.options);
    socket.connectToServer(bus.name);
    if (!socket.waitForConnected(left()))
        return false;
    socket.write(QByteArray("\0AUTH\r\n", 7));
    return socket.waitForReadyRead(left());
}

} // namespace

bool busAnswers(const QString& address, std::chrono::milliseconds patience) {
    const QDeadlineTimer deadline(patience);
    // The library tries them in this order, and would wait for the first one that hangs.
    for (const auto& each : address.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const auto socket = socketOf(each);
        if (!socket || answers(*socket, deadline))
            return true;
        if (deadline.hasExpired())
            return false;
    }
    return false;
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
