#include "launcherapp/platform/linux/input/SessionWatch.h"

#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>
#include <array>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

const auto systemConnection = QStringLiteral("tessarine-session");
const auto logind = QStringLiteral("org.freedesktop.login1");
const auto sessionInterface = QStringLiteral("org.freedesktop.login1.Session");

/// The same signal by several names, as desktops have it.
constexpr std::array screenSavers{"org.freedesktop.ScreenSaver",
                                  "org.gnome.ScreenSaver",
                                  "org.cinnamon.ScreenSaver",
                                  "org.mate.ScreenSaver"};

QDBusMessage questionToLogind(const char* method) {
    return QDBusMessage::createMethodCall(logind,
                                          QStringLiteral("/org/freedesktop/login1"),
                                          QStringLiteral("org.freedesktop.login1.Manager"),
                                          QLatin1String(method));
}

} // namespace

SessionWatch::SessionWatch(WorkQueues& work, std::function<void()> resumed)
    : resumed_(std::move(resumed)) {
    hearScreenSavers();
    connectToSystem(work);
}

SessionWatch::~SessionWatch() {
    QDBusConnection::disconnectFromBus(systemConnection);
}

/// A bus that doesn't answer is waited for half a minute.
void SessionWatch::connectToSystem(WorkQueues& work) {
    work.runApart(
        [] { return QDBusConnection::connectToBus(QDBusConnection::SystemBus, systemConnection); },
        [watch = QPointer(this)](const QDBusConnection& system) {
            if (!watch || !system.isConnected())
                return;
            watch->system_ = system;
            watch->findSession();
        });
}

void SessionWatch::hearScreenSavers() {
    auto bus = sessionBus();
    if (!bus)
        return;
    for (const auto* name : screenSavers)
        bus->connect(QString(),
                     QString(),
                     QLatin1String(name),
                     QStringLiteral("ActiveChanged"),
                     this,
                     SLOT(screenSaverChanged(bool)));
}

/// A program that the user's service manager started is in no session, but may have been told one.
void SessionWatch::findSession() {
    auto byProcess = questionToLogind("GetSessionByPID");
    byProcess << static_cast<quint32>(::getpid());
    askLogind(byProcess, [this] {
        const auto id = qEnvironmentVariable("XDG_SESSION_ID");
        if (id.isEmpty())
            return;
        auto byID = questionToLogind("GetSession");
        byID << id;
        askLogind(byID, [] {});
    });
}

void SessionWatch::askLogind(const QDBusMessage& question, std::function<void()> failed) {
    auto* watcher = new QDBusPendingCallWatcher(system_.asyncCall(question), this);
    QObject::connect(watcher,
                     &QDBusPendingCallWatcher::finished,
                     this,
                     [this, failed = std::move(failed)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         const QDBusPendingReply<QDBusObjectPath> reply = *finished;
                         if (reply.isError())
                             failed();
                         else
                             hearSession(reply.value().path());
                     });
}

void SessionWatch::hearSession(const QString& path) {
    system_.connect(
        logind, path, sessionInterface, QStringLiteral("Unlock"), this, SLOT(unlocked()));
    system_.connect(logind,
                    path,
                    QStringLiteral("org.freedesktop.DBus.Properties"),
                    QStringLiteral("PropertiesChanged"),
                    this,
                    SLOT(sessionChanged(QString, QVariantMap, QStringList)));
}

void SessionWatch::screenSaverChanged(bool active) {
    if (!active)
        resumed_();
}

void SessionWatch::unlocked() {
    resumed_();
}

void SessionWatch::sessionChanged(const QString& interface,
                                  const QVariantMap& changed,
                                  const QStringList&) {
    if (interface == sessionInterface && changed.value(QStringLiteral("Active")).toBool())
        resumed_();
}

} // namespace tessarine
