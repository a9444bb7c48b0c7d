#include "launcherapp/platform/linux/desktop/DBusCall.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <chrono>
#include <utility>

namespace tessarine {

namespace {

std::string inWords(const QDBusError& error) {
    return (error.message().isEmpty() ? error.name() : error.message()).toStdString();
}

} // namespace

void callBus(QDBusConnection& bus,
             const QDBusMessage& message,
             Seconds timeout,
             std::function<void(std::optional<std::string> problem)> done) {
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(timeout);
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(message, static_cast<int>(wait.count())));
    QObject::connect(watcher,
                     &QDBusPendingCallWatcher::finished,
                     watcher,
                     [done = std::move(done)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         const QDBusPendingReply<> reply = *finished;
                         done(reply.isError() ? std::optional(inWords(reply.error()))
                                              : std::nullopt);
                     });
}

} // namespace tessarine
