#pragma once

#include <QDBusMessage>
#include <QString>
#include <string>

namespace tessarine {

/// The XDG desktop portal: where it is on the session bus, and what its errors mean.
namespace DesktopPortal {

QString service();
QString path();

/// A call to one of the portal's interfaces, "GlobalShortcuts".
QDBusMessage call(const char* interface, const char* method);

/// Whether a reply says that the portal has no such interface, as each desktop's has some only.
bool isMissing(const QDBusMessage& reply);

/// Whether a reply is the portal's own no: it is there, and knows what it was asked.
bool isRefusal(const QDBusMessage& reply);

/// Why an error reply is one, in words for the user.
std::string problem(const QDBusMessage& error);

} // namespace DesktopPortal
} // namespace tessarine
