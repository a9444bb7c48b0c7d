#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <functional>
#include <utility>

namespace tessarine {

/// Tells of each program that comes to a bus, by whatever name or none. Main thread only, with
/// Qt's event loop.
class BusArrivals : public QObject {
    Q_OBJECT

public:
    BusArrivals(QDBusConnection bus, std::function<void()> came) : came_(std::move(came)) {
        bus.connect(QStringLiteral("org.freedesktop.DBus"),
                    QStringLiteral("/org/freedesktop/DBus"),
                    QStringLiteral("org.freedesktop.DBus"),
                    QStringLiteral("NameOwnerChanged"),
                    this,
                    SLOT(ownerChanged(QString, QString, QString)));
    }

private Q_SLOTS:

    /// Every connection has a name of its own, which begins so.
    void ownerChanged(const QString& name, const QString&, const QString& owner) {
        if (name.startsWith(QLatin1Char(':')) && !owner.isEmpty())
            came_();
    }

private:
    std::function<void()> came_;
};

} // namespace tessarine
