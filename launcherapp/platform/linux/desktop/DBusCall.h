#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <optional>
#include <string>

class QDBusConnection;
class QDBusMessage;

namespace tessarine {

/// Why a call failed, in words; nothing for a reply that is no error.
std::optional<std::string> busProblem(const QDBusMessage& reply);

/// Sends a call and gives what comes back, an error too; `done` is called once, later, on the main
/// thread, at the latest after `timeout`.
void askBus(const QDBusConnection& bus,
            const QDBusMessage& message,
            Seconds timeout,
            std::function<void(const QDBusMessage& reply)> done);

/// Sends a call whose answer holds nothing. `done` is called once, later, on the main thread, with
/// nothing on success, else with the problem in words; at the latest after `timeout`.
void callBus(const QDBusConnection& bus,
             const QDBusMessage& message,
             Seconds timeout,
             std::function<void(std::optional<std::string> problem)> done);

} // namespace tessarine
