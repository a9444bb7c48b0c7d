#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <functional>

class QDBusMessage;

namespace tessarine {

class WorkQueues;

/// Tells when the user's session comes to the front again: it was unlocked, or switched back to
/// from another user's. Some ways back are told twice. Heard from the screen saver on the session
/// bus and from logind on the system's, without waiting for the latter; silent where neither is.
/// Main thread only, with Qt's event loop.
class SessionWatch : public QObject {
    Q_OBJECT

public:
    SessionWatch(WorkQueues& work, std::function<void()> resumed);
    ~SessionWatch() override;

private Q_SLOTS:
    void screenSaverChanged(bool active);
    void unlocked();
    void sessionChanged(const QString& interface,
                        const QVariantMap& changed,
                        const QStringList& invalidated);

private:
    void hearScreenSavers();
    void connectToSystem(WorkQueues& work);
    void findSession();
    void hearSession(const QString& path);
    void askLogind(const QDBusMessage& question, std::function<void()> failed);

    std::function<void()> resumed_;
    QDBusConnection system_{QString()}; ///< no connection at first
};

} // namespace tessarine
