#pragma once

#include "launcherapp/platform/linux/desktop/PortalAppearance.h"

#include <QDBusConnection>
#include <QObject>

class QDBusMessage;
class QDBusPendingCallWatcher;

namespace tessarine {

/// Lives on the bus's side: what arrives is noted in the owner. Main thread only.
class PortalAppearance::Listener : public QObject {
    Q_OBJECT

public:
    Listener(PortalAppearance& owner, QDBusConnection bus);

private Q_SLOTS:
    /// Of the whole message: a slot that takes its three values is refused by the bus library as
    /// long as no variant has passed through it (Qt 6.4).
    void settingChanged(const QDBusMessage& message);

private:
    void answered(QDBusPendingCallWatcher* watcher);
    void note(const QString& group, const QString& key, const QVariant& value);

    PortalAppearance& owner_;
};

} // namespace tessarine
