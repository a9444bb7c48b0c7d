#include "launcherapp/platform/linux/desktop/DesktopNotice.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <utility>

namespace tessarine {

namespace {

constexpr Seconds patience{10}; ///< the bus may have to start who shows it

// The desktop notifications protocol, version 1.2.
const auto service = QStringLiteral("org.freedesktop.Notifications");
const auto icon = QStringLiteral("com.corvane.tessarine");

} // namespace

void DesktopNotice::show(const std::string& title,
                         const std::string& text,
                         std::function<void(std::optional<std::string> problem)> shown) {
    const auto bus = sessionBus();
    if (!bus)
        return shown("there is no session bus");
    auto call = QDBusMessage::createMethodCall(service,
                                               QStringLiteral("/org/freedesktop/Notifications"),
                                               service,
                                               QStringLiteral("Notify"));
    constexpr unsigned noneReplaced = 0;
    constexpr int untilRead = 0;
    call << QStringLiteral("Tessarine") << noneReplaced << icon << QString::fromStdString(title)
         << QString::fromStdString(text).toHtmlEscaped() << QStringList()
         << QVariantMap{{QStringLiteral("desktop-entry"), icon}} << untilRead;
    callBus(*bus, call, patience, std::move(shown));
}

} // namespace tessarine
