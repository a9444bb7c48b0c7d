#include "launcherapp/platform/linux/desktop/SessionLock.h"

#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "tests/linux/EventLoop.h"

#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVirtualObject>

namespace tessarine {
namespace {

constexpr auto sessionInterface = "org.freedesktop.login1.Session";

/// A logind that says which session is the asker's.
class Logind : public QDBusVirtualObject {
public:
    Logind() {
        bus.registerService(QStringLiteral("org.freedesktop.login1"));
        bus.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), this);
    }

    ~Logind() override { QDBusConnection::disconnectFromBus(QStringLiteral("locks")); }

    Logind(const Logind&) = delete;
    Logind& operator=(const Logind&) = delete;

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        auto reply = message.createReply();
        reply << QVariant::fromValue(QDBusObjectPath(session));
        connection.send(reply);
        asked = true;
        return true;
    }

    void tell(const QString& path, const char* interface, const char* signal, QVariantList values) {
        auto message =
            QDBusMessage::createSignal(path, QLatin1String(interface), QLatin1String(signal));
        message.setArguments(values);
        bus.send(message);
    }

    void hint(const QString& path, bool locked) {
        tell(path,
             "org.freedesktop.DBus.Properties",
             "PropertiesChanged",
             {QLatin1String(sessionInterface),
              QVariantMap{{QStringLiteral("LockedHint"), locked}},
              QStringList()});
    }

    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("locks"));
    const QString session = QStringLiteral("/org/freedesktop/login1/session/_32");
    bool asked = false;
};

TEST(SessionLock, tellsWhenTheOwnSessionIsLocked) {
    Logind logind;
    QtMainQueue queue;
    ThreadPoolWorkQueues work(queue);
    int locks = 0;
    const SessionLock lock(work, [&] { ++locks; });
    ASSERT_TRUE(spinUntil([&] { return logind.asked; }));
    spinFor(50); // for the rules that the bus is given then

    const auto other = QStringLiteral("/org/freedesktop/login1/session/_33");
    const auto saver = QStringLiteral("/x");

    const struct {
        const char* reason;
        std::function<void()> happens;
        int locks;
    } cases[] = {
        {"another user's", [&] { logind.tell(other, sessionInterface, "Lock", {}); }, 0},
        {"asked for", [&] { logind.tell(logind.session, sessionInterface, "Lock", {}); }, 1},
        {"done by the desktop", [&] { logind.hint(logind.session, true); }, 1},
        {"unlocked", [&] { logind.hint(logind.session, false); }, 0},
        {"saver on",
         [&] { logind.tell(saver, "org.gnome.ScreenSaver", "ActiveChanged", {true}); },
         1},
        {"saver off",
         [&] { logind.tell(saver, "org.gnome.ScreenSaver", "ActiveChanged", {false}); },
         0},
    };

    for (const auto& each : cases) {
        const int earlier = locks;
        each.happens();
        if (each.locks > 0)
            spinUntil([&] { return locks > earlier; });
        else
            spinFor(50);
        EXPECT_EQ(locks - earlier, each.locks) << each.reason;
    }
}

TEST(SessionLock, goesWithoutALogindAndBeforeItsBusHasAnswered) {
    QtMainQueue queue;
    ThreadPoolWorkQueues work(queue);
    int locks = 0;
    {
        const SessionLock hasty(work, [&] { ++locks; });
    }
    const SessionLock lock(work, [&] { ++locks; });
    spinFor(50);
    EXPECT_EQ(locks, 0);
}

} // namespace
} // namespace tessarine
