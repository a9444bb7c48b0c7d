#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <functional>

class QDBusMessage;

namespace tessarine {

class WorkQueues;

/// Tells when the user's session is being locked: heard from logind on the system bus, and from
/// the screen saver on the session's, so that one lock may be told twice. Silent where neither is.
/// Main thread only, with Qt's event loop.
class SessionLock : public QObject {
    Q_OBJECT

public:
    /// Waits for no bus: the system's is gone to in the background.
    SessionLock(WorkQueues& work, std::function<void()> locked);
    ~SessionLock() override;
    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;

private Q_SLOTS:
    void lockAsked();
    void screenSaverChanged(bool active);
    void sessionChanged(const QString& interface,
                        const QVariantMap& changed,
                        const QStringList& invalidated);

private:
    void hearScreenSavers();
    void findSession();
    void askLogind(const QDBusMessage& question, std::function<void()> failed);
    void hearSession(const QString& path);

    std::function<void()> locked_;
};

} // namespace tessarine
