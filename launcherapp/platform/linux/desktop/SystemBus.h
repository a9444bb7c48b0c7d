#pragma once

#include <QDBusConnection>
#include <QString>
#include <chrono>

namespace tessarine {

/// A connection of this name to the system's bus; not connected where none runs or where it says
/// nothing for so long. Any thread but the main one, since it waits.
QDBusConnection systemBus(const QString& name, std::chrono::milliseconds patience);

} // namespace tessarine
