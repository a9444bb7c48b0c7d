#include "launcherapp/platform/linux/desktop/SessionLock.h"

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

const auto systemConnection = QStringLiteral("tessarine-lock");
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

SessionLock::SessionLock(WorkQueues& work, std::function<void()> locked)
    : locked_(std::move(locked)) {
    hearScreenSavers();
    // The greeting of a bus waits for its answer, and this bus is nobody's hurry.
    work.submit(
        WorkPriority::utility,
        [] { QDBusConnection::connectToBus(QDBusConnection::SystemBus, systemConnection); },
        [self = QPointer(this)] {
            if (self)
                self->findSession();
        });
}

SessionLock::~SessionLock() {
    QDBusConnection::disconnectFromBus(systemConnection);
}

void SessionLock::hearScreenSavers() {
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
void SessionLock::findSession() {
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

void SessionLock::askLogind(const QDBusMessage& question, std::function<void()> failed) {
    const QDBusConnection system(systemConnection);
    if (!system.isConnected())
        return;
    auto* watcher = new QDBusPendingCallWatcher(system.asyncCall(question), this);
    connect(watcher,
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

/// Whoever asks for the lock tells "Lock"; a locker that the user started tells by the hint alone.
void SessionLock::hearSession(const QString& path) {
    QDBusConnection system(systemConnection);
    system.connect(logind, path, sessionInterface, QStringLiteral("Lock"), this, SLOT(lockAsked()));
    system.connect(logind,
                   path,
                   QStringLiteral("org.freedesktop.DBus.Properties"),
                   QStringLiteral("PropertiesChanged"),
                   this,
                   SLOT(sessionChanged(QString, QVariantMap, QStringList)));
}

void SessionLock::lockAsked() {
    locked_();
}

void SessionLock::screenSaverChanged(bool active) {
    if (active)
        locked_();
}

void SessionLock::sessionChanged(const QString& interface,
                                 const QVariantMap& changed,
                                 const QStringList&) {
    if (interface == sessionInterface && changed.value(QStringLiteral("LockedHint")).toBool())
        locked_();
}

} // namespace tessarine
