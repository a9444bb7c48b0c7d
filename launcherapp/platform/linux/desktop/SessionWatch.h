#pragma once

#include "launcherapp/platform/Observers.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <functional>

class QDBusMessage;

namespace tessarine {

class WorkQueues;

/// Tells when the user's session is locked and when it comes to the front again. Heard from the
/// screen saver on the session bus and from logind on the system's, so that one lock may be told
/// twice, and one way back too; silent where neither is. Main thread only, with Qt's event loop.
class SessionWatch : public QObject {
    Q_OBJECT

public:
    /// Goes to the buses once the present turn of the event loop is over; the system's, which may
    /// never answer, is waited for in the background.
    explicit SessionWatch(WorkQueues& work);
    ~SessionWatch() override;
    SessionWatch(const SessionWatch&) = delete;
    SessionWatch& operator=(const SessionWatch&) = delete;

    /// The session is locked, or is about to be.
    Subscription onLocked(std::function<void()> locked);

    /// The session was unlocked, or switched back to from another user's.
    Subscription onResumed(std::function<void()> resumed);

private Q_SLOTS:
    void screenSaverChanged(bool active);
    void logindChanged(const QString& name, const QString& earlier, const QString& owner);
    void lockAsked();
    void unlockAsked();
    void sessionChanged(const QString& interface,
                        const QVariantMap& changed,
                        const QStringList& invalidated);

private:
    void hearScreenSavers();
    void connectToSystem(WorkQueues& work);
    void hearLogind();
    void findSession();
    void askLogind(const QDBusMessage& question, std::function<void()> failed);
    void hearSession(const QString& owner, const QString& path);

    Observers<> locks_;
    Observers<> resumes_;
    QDBusConnection system_{QString()}; ///< no connection at first
};

} // namespace tessarine
