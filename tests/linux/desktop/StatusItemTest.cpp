#include "launcherapp/platform/linux/desktop/StatusItem.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QThread>
#include <mutex>

namespace tessarine {
namespace {

using testing::AllOf;
using testing::HasSubstr;

/// A desktop's tray. Qt waits for its answers on the main thread, so it lives on another.
class Tray : public QDBusVirtualObject {
public:
    Tray() {
        moveToThread(&thread_);
        thread_.start();
        bus_.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this);
        bus_.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"));
    }

    ~Tray() override {
        bus_.unregisterService(QStringLiteral("org.kde.StatusNotifierWatcher"));
        bus_.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
        thread_.quit();
        thread_.wait();
        QDBusConnection::disconnectFromBus(QStringLiteral("tray"));
    }

    /// The bus name of the item that registered; empty before.
    QString item() const {
        const std::scoped_lock lock(mutex_);
        return item_;
    }

    /// Qt reads properties of an object only when it says that it has them.
    QString introspect(const QString&) const override {
        return QStringLiteral(
            "<interface name='org.kde.StatusNotifierWatcher'>"
            "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
            "</interface>");
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() == QLatin1String("org.freedesktop.DBus.Introspectable"))
            return false;
        auto reply = message.createReply();
        if (message.member() == QLatin1String("Get"))
            reply << QVariant::fromValue(QDBusVariant(true));
        if (message.member() == QLatin1String("RegisterStatusNotifierItem")) {
            const std::scoped_lock lock(mutex_);
            item_ = message.arguments().value(0).toString();
        }
        return connection.send(reply);
    }

private:
    mutable std::mutex mutex_;
    QString item_;
    QThread thread_;
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("tray"));
};

/// What another program is answered; the event loop runs meanwhile.
std::string asked(const QString& service, const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral("dbus-send"),
                  QStringList{QStringLiteral("--session"),
                              QStringLiteral("--print-reply"),
                              QStringLiteral("--dest=") + service} +
                      arguments);
    spinUntil([&] { return process.state() == QProcess::NotRunning; });
    return process.readAllStandardOutput().toStdString();
}

TEST(StatusItem, waitsForATrayAndShowsItselfThere) {
    std::vector<std::string> lines;
    int opened = 0;
    StatusItem item({.open = [&] { ++opened; },
                     .log = [&](const std::string& line) { lines.push_back(line); }});
    item.setStatus("registered ⌥Space");
    item.start();
    ASSERT_TRUE(spinUntil([&] { return !lines.empty(); }));
    EXPECT_THAT(lines.front(), HasSubstr("this desktop shows no tray"));

    const Tray tray;
    ASSERT_TRUE(spinUntil([&] { return !tray.item().isEmpty(); }));
    const QStringList toolTip{QStringLiteral("/StatusNotifierItem"),
                              QStringLiteral("org.freedesktop.DBus.Properties.Get"),
                              QStringLiteral("string:org.kde.StatusNotifierItem"),
                              QStringLiteral("string:ToolTip")};
    EXPECT_THAT(asked(tray.item(), toolTip), HasSubstr("Tessarine: registered ⌥Space"));
    item.setStatus("not registered");
    EXPECT_THAT(asked(tray.item(), toolTip), HasSubstr("Tessarine: not registered"));
    EXPECT_THAT(asked(tray.item(),
                      {QStringLiteral("/MenuBar"),
                       QStringLiteral("com.canonical.dbusmenu.GetLayout"),
                       QStringLiteral("int32:0"),
                       QStringLiteral("int32:-1"),
                       QStringLiteral("array:string:")}),
                AllOf(HasSubstr("Open Tessarine"), HasSubstr("Settings…"), HasSubstr("Quit")));
    EXPECT_EQ(opened, 0);
    asked(tray.item(),
          {QStringLiteral("/StatusNotifierItem"),
           QStringLiteral("org.kde.StatusNotifierItem.Activate"),
           QStringLiteral("int32:0"),
           QStringLiteral("int32:0")});
    EXPECT_EQ(opened, 1);
}

} // namespace
} // namespace tessarine
