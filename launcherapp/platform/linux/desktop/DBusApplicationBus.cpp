#include "launcherapp/platform/linux/desktop/DBusApplicationBus.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
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

/// As far as desktop-file ids can go wrong (the D-Bus standard, "Bus names").
bool isBusName(std::string_view name) {
    const auto isNameCharacter = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '-' || c == '.';
    };
    return name.size() <= 255 && name.find('.') != std::string_view::npos &&
           name.find("..") == std::string_view::npos && !name.starts_with('.') &&
           !name.ends_with('.') && std::ranges::all_of(name, isNameCharacter);
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
    callBus(*bus, callFor(request), timeout, std::move(done));
}

} // namespace tessarine
