#pragma once

#include "launcherapp/platform/linux/input/portal/PortalShortcut.h"
#include "tests/linux/BusObject.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A desktop's portal on the tests' bus, whose user answers as a test says.
class FakePortal : public QDBusVirtualObject {
public:
    enum class User { allows, declines, isAway };
    enum class Answers { list, listWhenAsked, nonsense, noShortcuts, notReady };

    static constexpr auto desktop = "/org/freedesktop/portal/desktop";
    static constexpr auto shortcutsInterface = "org.freedesktop.portal.GlobalShortcuts";

    FakePortal() {
        registerPortalEntries();
        owns = bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop")) &&
               bus_.registerVirtualObject(QLatin1String(desktop), this, QDBusConnection::SubPath);
    }

    ~FakePortal() override {
        bus_.unregisterObject(QLatin1String(desktop), QDBusConnection::UnregisterTree);
        bus_.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
        QDBusConnection::disconnectFromBus(QStringLiteral("portal"));
    }

    FakePortal(const FakePortal&) = delete;
    FakePortal& operator=(const FakePortal&) = delete;

    bool owns = false;
    User user = User::allows;
    std::string unwanted; ///< the user declines what has this shortcut among it
    Answers answers = Answers::list;
    bool takesNames = true;     ///< of programs
    bool isAskedForNew = false; ///< the user is asked for nothing else than what is new
    /// What the user gives each shortcut; those that are missing get none.
    std::map<QString, QString> keys{{QStringLiteral("panel"), QStringLiteral("Meta+Space")},
                                    {QStringLiteral("clipboard"), QStringLiteral("Meta+V")}};
    std::vector<std::string> calls; ///< "Register com.x", "BindShortcuts panel=LOGO+space …"
    QString session;                ///< the last one's object

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const auto member = message.member();
        if (member == QLatin1String("Register")) {
            note("Register " + message.arguments()[0].toString());
            return bus.send(takesNames ? message.createReply()
                                       : message.createErrorReply(QDBusError::AccessDenied,
                                                                  QStringLiteral("who is that?")));
        }
        if (member == QLatin1String("Close")) {
            note(message.path() == session ? "Close session" : "Close");
            return bus.send(message.createReply());
        }
        if (answers == Answers::noShortcuts) {
            note(member);
            return bus.send(message.createErrorReply(QDBusError::UnknownMethod, {}));
        }
        if (answers == Answers::notReady) {
            answers = Answers::list;
            return bus.send(message.createErrorReply(QDBusError::UnknownObject, {}));
        }
        if (member == QLatin1String("BindShortcuts"))
            note(member + wishes(message));
        else
            note(member);
        return respond(message, bus);
    }

    void activate(const char* name, quint64 time = 0, const QVariantMap& options = {}) {
        tellKey("Activated", name, time, options);
    }

    void deactivate(const char* name) { tellKey("Deactivated", name, 0); }

    /// The user goes through the desktop's settings.
    void rebind(std::map<QString, QString> now) {
        keys = std::move(now);
        tell(QLatin1String(desktop),
             shortcutsInterface,
             "ShortcutsChanged",
             {QVariant::fromValue(QDBusObjectPath(session)), QVariant::fromValue(list())});
    }

    void closeSession() {
        tell(session, "org.freedesktop.portal.Session", "Closed", {QVariantMap()});
    }

    void tell(const QString& path,
              const char* interface,
              const char* signal,
              const QVariantList& values) {
        bus_.send(busSignal(path, interface, signal, values));
    }

private:
    void note(const QString& call) { calls.push_back(call.toStdString()); }

    static QString wishes(const QDBusMessage& message) {
        QString text;
        const auto argument = message.arguments()[1].value<QDBusArgument>();
        for (const auto& entry : qdbus_cast<QList<PortalEntry>>(argument))
            text += QLatin1Char(' ') + entry.name + QLatin1Char('=') +
                    entry.values[QStringLiteral("preferred_trigger")].toString();
        return text;
    }

    QList<PortalEntry> list() const {
        QList<PortalEntry> entries;
        for (const auto& [name, key] : keys)
            entries.push_back(
                {.name = name, .values = {{QStringLiteral("trigger_description"), key}}});
        return entries;
    }

    /// The reply names the request, whose signal then has the answer.
    bool respond(const QDBusMessage& message, const QDBusConnection& bus) {
        const auto options = qdbus_cast<QVariantMap>(message.arguments().constLast());
        const auto sender = message.service().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
        const auto under = [&](const char* kind, const char* token) {
            return QLatin1String(desktop) + QLatin1Char('/') + QLatin1String(kind) +
                   QLatin1Char('/') + sender + QLatin1Char('/') +
                   options[QLatin1String(token)].toString();
        };
        const auto request = under("request", "handle_token");
        bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        QVariantMap results;
        if (message.member() == QLatin1String("CreateSession")) {
            session = under("session", "session_handle_token");
            results[QStringLiteral("session_handle")] = session;
        } else if (user == User::isAway) {
            return true;
        } else if (answers == Answers::nonsense) {
            results[QStringLiteral("shortcuts")] = QStringLiteral("all of them");
        } else if (answers == Answers::list || message.member() == QLatin1String("ListShortcuts")) {
            results[QStringLiteral("shortcuts")] = QVariant::fromValue(list());
        }
        const bool isQuestion = message.member() == QLatin1String("BindShortcuts");
        const auto wished = isQuestion ? wishes(message).split(QLatin1Char(' ')) : QStringList();
        const bool isOld = std::ranges::all_of(
            wished, [this](const QString& each) { return granted_.contains(each); });
        const bool isUnwanted =
            !unwanted.empty() && calls.back().find(' ' + unwanted + '=') != std::string::npos;
        const bool isDeclined =
            isUnwanted || (user == User::declines && isQuestion && !(isAskedForNew && isOld));
        if (isQuestion && !isDeclined)
            granted_ += wished;
        tell(request,
             "org.freedesktop.portal.Request",
             "Response",
             {isDeclined ? 1U : 0U, isDeclined ? QVariantMap() : results});
        return true;
    }

    void
    tellKey(const char* signal, const char* name, quint64 time, const QVariantMap& options = {}) {
        tell(QLatin1String(desktop),
             shortcutsInterface,
             signal,
             {QVariant::fromValue(QDBusObjectPath(session)), QLatin1String(name), time, options});
    }

    QStringList granted_; ///< "panel=LOGO+space"
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("portal"));
};

} // namespace tessarine
