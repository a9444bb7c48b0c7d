#include "launcherapp/platform/linux/desktop/SessionWatch.h"

#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/desktop/SystemBus.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>
#include <array>
#include <chrono>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

/// With the system's bus, which may be busy with the user's login.
constexpr std::chrono::seconds patience{30};

const auto logind = QStringLiteral("org.freedesktop.login1");
const auto sessionInterface = QStringLiteral("org.freedesktop.login1.Session");

/// The same signal by several names, as desktops have it.
constexpr std::array screenSavers{"org.freedesktop.ScreenSaver",
                                  "org.gnome.ScreenSaver",
                                  "org.cinnamon.ScreenSaver",
                                  "org.mate.ScreenSaver"};

/// No two watches share a connection, as one may go while the other's is being made.
QString newConnectionName() {
    static int made = 0;
    return QStringLiteral("tessarine-session-%1").arg(++made);
}

QDBusMessage questionToLogind(const char* method) {
    return QDBusMessage::createMethodCall(logind,
                                          QStringLiteral("/org/freedesktop/login1"),
                                          QStringLiteral("org.freedesktop.login1.Manager"),
                                          QLatin1String(method));
}

} // namespace

SessionWatch::SessionWatch(WorkQueues& work) {
    // The session's bus may be slow to greet, and the present turn is the program's start.
    QMetaObject::invokeMethod(
        this,
        [this, &work] {
            hearScreenSavers();
            connectToSystem(work);
        },
        Qt::QueuedConnection);
}

/// Its connection stays until the program ends: Qt fails at times when one is let go of while its
/// thread is busy with it, and there is one watch in a run.
SessionWatch::~SessionWatch() = default;

Subscription SessionWatch::onLocked(std::function<void()> locked) {
    return locks_.add(std::move(locked));
}

Subscription SessionWatch::onResumed(std::function<void()> resumed) {
    return resumes_.add(std::move(resumed));
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

/// For so long no thread of the pool can be had.
void SessionWatch::connectToSystem(WorkQueues& work) {
    work.runApart([name = newConnectionName()] { return systemBus(name, patience); },
                  [watch = QPointer(this)](const QDBusConnection& system) {
                      if (!watch || !system.isConnected())
                          return;
                      watch->system_ = system;
                      watch->hearLogind();
                      watch->findSession();
                  });
}

/// Signals are heard from logind's connection: by its name, the library would wait for the bus to
/// say whose that is. So its coming must be heard, as after a restart. No sender is given here
/// for the same reason; whoever forged this one would only have logind asked.
void SessionWatch::hearLogind() {
    system_.connect(QString(),
                    QStringLiteral("/org/freedesktop/DBus"),
                    QStringLiteral("org.freedesktop.DBus"),
                    QStringLiteral("NameOwnerChanged"),
                    {logind},
                    QString(),
                    this,
                    SLOT(logindChanged(QString, QString, QString)));
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
    connect(watcher,
            &QDBusPendingCallWatcher::finished,
            this,
            [this, failed = std::move(failed)](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                const QDBusPendingReply<QDBusObjectPath> reply = *finished;
                if (reply.isError())
                    failed();
                else
                    hearSession(reply.reply().service(), reply.value().path());
            });
}

/// Whoever asks for the lock tells "Lock"; a locker that the user started tells by the hint alone,
/// and so it does when it is given the password.
void SessionWatch::hearSession(const QString& owner, const QString& path) {
    const auto hear = [&](const QString& interface, const char* signal, const char* slot) {
        system_.connect(owner, path, interface, QLatin1String(signal), this, slot);
    };
    hear(sessionInterface, "Lock", SLOT(lockAsked()));
    hear(sessionInterface, "Unlock", SLOT(unlockAsked()));
    hear(QStringLiteral("org.freedesktop.DBus.Properties"),
         "PropertiesChanged",
         SLOT(sessionChanged(QString, QVariantMap, QStringList)));
}

void SessionWatch::screenSaverChanged(bool active) {
    (active ? locks_ : resumes_).tell();
}

void SessionWatch::logindChanged(const QString&, const QString&, const QString& owner) {
    if (!owner.isEmpty())
        findSession();
}

void SessionWatch::lockAsked() {
    locks_.tell();
}

void SessionWatch::unlockAsked() {
    resumes_.tell();
}

void SessionWatch::sessionChanged(const QString& interface,
                                  const QVariantMap& changed,
                                  const QStringList&) {
    if (interface != sessionInterface)
        return;
    const auto isLocked = changed.value(QStringLiteral("LockedHint"));
    if (isLocked.toBool())
        locks_.tell();
    const bool isUnlocked = isLocked.isValid() && !isLocked.toBool();
    if (isUnlocked || changed.value(QStringLiteral("Active")).toBool())
        resumes_.tell();
}

} // namespace tessarine
