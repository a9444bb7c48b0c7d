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
    item.refresh({.key = "Alt+Space", .problem = {}, .copy = {}});
    item.start();
    ASSERT_TRUE(spinUntil([&] { return !lines.empty(); }));
    EXPECT_THAT(lines.front(), HasSubstr("this desktop shows no tray"));

    const Tray tray;
    ASSERT_TRUE(spinUntil([&] { return !tray.item().isEmpty(); }));
    const QStringList toolTip{QStringLiteral("/StatusNotifierItem"),
                              QStringLiteral("org.freedesktop.DBus.Properties.Get"),
                              QStringLiteral("string:org.kde.StatusNotifierItem"),
                              QStringLiteral("string:ToolTip")};
    const QStringList iconName{toolTip.mid(0, 3) << QStringLiteral("string:IconName")};
    const QStringList menu{QStringLiteral("/MenuBar"),
                           QStringLiteral("com.canonical.dbusmenu.GetLayout"),
                           QStringLiteral("int32:0"),
                           QStringLiteral("int32:-1"),
                           QStringLiteral("array:string:")};
    EXPECT_THAT(asked(tray.item(), toolTip), HasSubstr("Alt+Space opens Tessarine"));
    EXPECT_THAT(asked(tray.item(), menu),
                AllOf(HasSubstr("Alt+Space opens Tessarine"),
                      HasSubstr("Open Tessarine"),
                      HasSubstr("Settings…"),
                      HasSubstr("Quit")));
    const auto pixels = [&] {
        return asked(tray.item(), toolTip.mid(0, 3) << QStringLiteral("string:IconPixmap"));
    };
    const auto before = pixels() + asked(tray.item(), iconName);
    item.refresh({.key = {}, .problem = "Super+Space is held by another app", .copy = "Off"});
    const auto line = "No key opens Tessarine: Super+Space is held by another app";
    EXPECT_THAT(asked(tray.item(), toolTip), HasSubstr(line));
    EXPECT_THAT(asked(tray.item(), menu), AllOf(HasSubstr(line), HasSubstr("\"Off\"")));
    EXPECT_NE(pixels() + asked(tray.item(), iconName), before) << "another icon";
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
