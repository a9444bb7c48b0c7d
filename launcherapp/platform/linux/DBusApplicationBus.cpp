#include "launcherapp/platform/linux/DBusApplicationBus.h"

#include "launcherapp/platform/linux/SessionBus.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <chrono>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

/// "org.x.Some-App" is at "/org/x/Some_App".
QString objectPath(QString busName) {
    busName.replace(QLatin1Char('.'), QLatin1Char('/'));
    busName.replace(QLatin1Char('-'), QLatin1Char('_'));
    return QLatin1Char('/') + busName;
}

QDBusMessage callFor(const BusActivation& request) {
    const auto name = QString::fromStdString(request.busName);
    auto message = QDBusMessage::createMethodCall(name,
                                                  objectPath(name),
                                                  QStringLiteral("org.freedesktop.Application"),
                                                  request.uris.empty() ? QStringLiteral("Activate")
                                                                       : QStringLiteral("Open"));
    if (!request.uris.empty()) {
        QStringList uris;
        for (const auto& uri : request.uris)
            uris.append(QString::fromStdString(uri));
        message << uris;
    }
    QVariantMap platformData;
    if (!request.activationToken.empty()) {
        const auto token = QString::fromStdString(request.activationToken);
        platformData.insert(QStringLiteral("desktop-startup-id"), token);
        platformData.insert(QStringLiteral("activation-token"), token);
    }
    message << platformData;
    return message;
}

/// As far as desktop-file ids can go wrong (D-Bus Specification, "Bus names").
bool isBusName(std::string_view name) {
    const auto isNameCharacter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '-' || c == '.';
    };
    return name.size() <= 255 && name.find('.') != std::string_view::npos &&
           name.find("..") == std::string_view::npos && !name.starts_with('.') &&
           !name.ends_with('.') && std::ranges::all_of(name, isNameCharacter);
}

std::string inWords(const QDBusError& error) {
    return (error.message().isEmpty() ? error.name() : error.message()).toStdString();
}

} // namespace

DBusApplicationBus::DBusApplicationBus(MainQueue& queue) : queue_(queue) {}

void DBusApplicationBus::activate(const BusActivation& request,
                                  Seconds timeout,
                                  std::function<void(std::optional<std::string>)> done) {
    auto bus = sessionBus();
    if (!bus) {
        queue_.post([done = std::move(done)] { done("there is no session bus"); });
        return;
    }
    // Qt refuses such a call with an error that names nothing.
    if (!isBusName(request.busName)) {
        queue_.post([done = std::move(done), name = request.busName] {
            done("\"" + name + "\" is no bus name");
        });
        return;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(timeout);
    auto* watcher = new QDBusPendingCallWatcher(
        bus->asyncCall(callFor(request), static_cast<int>(wait.count())));
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
