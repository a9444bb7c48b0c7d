#pragma once

#include <QDBusConnection>
#include <QString>
#include <chrono>

namespace tessarine {

/// Whether the bus at a D-Bus address says anything to a newcomer within so long, whatever the way
/// there takes. One that is reached in another way than by a local socket can't be asked, and
/// counts as answering. Any thread but the main one, since it waits.
bool busAnswers(const QString& address, std::chrono::milliseconds patience);

/// A connection of this name to the system's bus; not connected where none runs or where it says
/// nothing for so long. Any thread but the main one, since it waits.
QDBusConnection systemBus(const QString& name, std::chrono::milliseconds patience);

} // namespace tessarine
