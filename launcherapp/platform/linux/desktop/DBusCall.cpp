#include "launcherapp/platform/linux/desktop/DBusCall.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <chrono>
#include <utility>

namespace tessarine {

namespace {

std::string inWords(const QDBusMessage& error) {
    return (error.errorMessage().isEmpty() ? error.errorName() : error.errorMessage())
        .toStdString();
}

} // namespace

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
        done(reply.type() == QDBusMessage::ErrorMessage ? std::optional(inWords(reply))
                                                        : std::nullopt);
    });
}

} // namespace tessarine
