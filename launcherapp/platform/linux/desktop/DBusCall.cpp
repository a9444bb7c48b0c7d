#include "launcherapp/platform/linux/desktop/DBusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <chrono>
#include <utility>

namespace tessarine {

std::optional<std::string> busProblem(const QDBusMessage& reply) {
    if (reply.type() != QDBusMessage::ErrorMessage)
        return std::nullopt;
    return (reply.errorMessage().isEmpty() ? reply.errorName() : reply.errorMessage())
        .toStdString();
}

void askBus(const QDBusConnection& bus,
            const QDBusMessage& message,
            Seconds timeout,
            std::function<void(const QDBusMessage& reply)> done) {
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(timeout);
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(message, static_cast<int>(wait.count())));
    QObject::connect(watcher,
                     &QDBusPendingCallWatcher::finished,
                     watcher,
                     [done = std::move(done)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         done(finished->reply());
                     });
}

void callBus(const QDBusConnection& bus,
             const QDBusMessage& message,
             Seconds timeout,
             std::function<void(std::optional<std::string> problem)> done) {
    askBus(bus, message, timeout, [done = std::move(done)](const QDBusMessage& reply) {
        done(busProblem(reply));
    });
}

} // namespace tessarine
