#include "launcherapp/platform/linux/desktop/StatusItem.h"

#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
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
QIcon trayIcon(const QString& name) {
    return QIcon::fromTheme(
        name, QIcon(QStringLiteral(":/tessarine/icons/") + name + QStringLiteral(".svg")));
}

std::string inWords(const StatusItem::State& state) {
    if (!state.key.empty())
        return state.key + " opens Tessarine";
    return "No key opens Tessarine" + (state.problem.empty() ? "" : ": " + state.problem);
}

} // namespace

StatusItem::StatusItem(Hooks hooks) : hooks_(std::move(hooks)) {}

StatusItem::~StatusItem() = default;

/// Qt asks once in a program's life whether there is a tray and believes the answer ever after, so
/// it may not be asked before there is one.
void StatusItem::start() {
    auto bus = sessionBus();
    if (!bus)
        return say("there is no session bus");
    watcher_.setConnection(*bus);
    watcher_.addWatchedService(watcherName());
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { lookForHost(); });
    bus->connect(watcherName(),
                 watcherPath(),
                 watcherName(),
                 QStringLiteral("StatusNotifierHostRegistered"),
                 this,
                 SLOT(lookForHost()));
    lookForHost();
}

void StatusItem::refresh(State state) {
    if (state == state_)
        return;
    state_ = std::move(state);
    tell();
}

void StatusItem::tell() {
    if (!icon_)
        return;
    const auto line = QString::fromStdString(inWords(state_));
    const auto copy = QString::fromStdString(state_.copy);
    icon_->setIcon(trayIcon(state_.key.empty()
                                ? QStringLiteral("com.corvane.tessarine-nokey-symbolic")
                                : QStringLiteral("com.corvane.tessarine-symbolic")));
    icon_->setToolTip(copy.isEmpty() ? line : line + QLatin1Char('\n') + copy);
    keyLine_->setText(line);
    copyLine_->setText(copy);
    copyLine_->setVisible(!copy.isEmpty());
}

/// A watcher keeps the list of items; only a host, which registers there, shows them.
void StatusItem::lookForHost() {
    auto bus = sessionBus();
    if (!bus || icon_)
        return;
    auto message = QDBusMessage::createMethodCall(watcherName(),
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

void StatusItem::show() {
    if (icon_)
        return;
    menu_ = std::make_unique<QMenu>();
    for (auto* line : {&keyLine_, &copyLine_}) {
        *line = menu_->addAction(QString());
        (*line)->setEnabled(false);
    }
    menu_->addSeparator();
    add("Open Tessarine", hooks_.open);
    add("Settings…", hooks_.settings);
    menu_->addSeparator();
    add("Quit", hooks_.quit);
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(menu_.get());
    tell();
    connect(icon_.get(),
            &QSystemTrayIcon::activated,
            this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger && hooks_.open)
                    hooks_.open();
            });
    icon_->show();
}

void StatusItem::add(const char* title, const std::function<void()>& chosen) {
    auto* action = menu_->addAction(QString::fromUtf8(title));
    connect(action, &QAction::triggered, this, [&chosen] {
        if (chosen)
            chosen();
    });
}

void StatusItem::say(const char* reason) {
    if (hooks_.log)
        hooks_.log(std::string("status item: ") + reason);
}

} // namespace tessarine
