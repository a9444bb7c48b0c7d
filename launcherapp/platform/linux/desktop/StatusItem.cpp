#include "launcherapp/platform/linux/desktop/StatusItem.h"

#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>
#include <utility>

namespace tessarine {

namespace {

QString watcherName() {
    return QStringLiteral("org.kde.StatusNotifierWatcher");
}

QString watcherPath() {
    return QStringLiteral("/StatusNotifierWatcher");
}

/// The installed one follows the desktop's icon theme; a program run from its build folder has its
/// own.
QIcon trayIcon() {
    return QIcon::fromTheme(
        QStringLiteral("com.corvane.tessarine-symbolic"),
        QIcon(QStringLiteral(":/tessarine/icons/com.corvane.tessarine-symbolic.svg")));
}

} // namespace

class StatusItem::Tray : public QObject {
    Q_OBJECT

public:
    explicit Tray(Hooks hooksToCall) : hooks(std::move(hooksToCall)) {}

    /// Qt asks once in a program's life whether there is a tray and believes the answer ever after,
    /// so it may not be asked before there is one.
    void start() {
        auto bus = sessionBus();
        if (!bus)
            return say("there is no session bus");
        watcher_.setConnection(*bus);
        watcher_.addWatchedService(watcherName());
        watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
        connect(
            &watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { lookForHost(); });
        bus->connect(watcherName(),
                     watcherPath(),
                     watcherName(),
                     QStringLiteral("StatusNotifierHostRegistered"),
                     this,
                     SLOT(lookForHost()));
        lookForHost();
    }

    void show() {
        if (icon_)
            return;
        menu_ = std::make_unique<QMenu>();
        add("Open Tessarine", hooks.open);
        add("Settings…", hooks.settings);
        menu_->addSeparator();
        add("Quit", hooks.quit);
        icon_ = std::make_unique<QSystemTrayIcon>(trayIcon());
        icon_->setContextMenu(menu_.get());
        setStatus(status_);
        connect(icon_.get(),
                &QSystemTrayIcon::activated,
                this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger && hooks.open)
                        hooks.open();
                });
        icon_->show();
    }

    void setStatus(const QString& line) {
        status_ = line;
        if (icon_)
            icon_->setToolTip(line.isEmpty() ? QStringLiteral("Tessarine")
                                             : QStringLiteral("Tessarine: ") + line);
    }

    Hooks hooks;

private Q_SLOTS:

    /// A watcher keeps the list of items; only a host, which registers there, shows them.
    void lookForHost() {
        auto bus = sessionBus();
        if (!bus || icon_)
            return;
        auto message =
            QDBusMessage::createMethodCall(watcherName(),
                                           watcherPath(),
                                           QStringLiteral("org.freedesktop.DBus.Properties"),
                                           QStringLiteral("Get"));
        message << watcherName() << QStringLiteral("IsStatusNotifierHostRegistered");
        auto* call = new QDBusPendingCallWatcher(bus->asyncCall(message), this);
        connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
            call->deleteLater();
            const QDBusPendingReply<QDBusVariant> reply(*call);
            if (reply.isError() || !reply.value().variant().toBool())
                return say("this desktop shows no tray; the icon waits for one");
            show();
        });
    }

private:
    void add(const char* title, const std::function<void()>& chosen) {
        auto* action = menu_->addAction(QString::fromUtf8(title));
        connect(action, &QAction::triggered, this, [&chosen] {
            if (chosen)
                chosen();
        });
    }

    void say(const char* reason) {
        if (hooks.log)
            hooks.log(std::string("status item: ") + reason);
    }

    QDBusServiceWatcher watcher_;
    QString status_;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_; ///< none until there is a tray
};

StatusItem::StatusItem(Hooks hooks) : tray_(std::make_unique<Tray>(std::move(hooks))) {}

StatusItem::~StatusItem() = default;

void StatusItem::start() {
    tray_->start();
}

void StatusItem::setStatus(const std::string& line) {
    tray_->setStatus(QString::fromStdString(line));
}

} // namespace tessarine

#include "StatusItem.moc"
