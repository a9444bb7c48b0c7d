#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <utility>

namespace tessarine {

inline QDBusMessage busSignal(const QString& path,
                              const char* interface,
                              const char* signal,
                              const QVariantList& values) {
    auto message =
        QDBusMessage::createSignal(path, QLatin1String(interface), QLatin1String(signal));
    message.setArguments(values);
    return message;
}

/// Another program on the session bus, with one object that notes what it is told and answers as
/// a test wants.
class BusObject : public QDBusVirtualObject {
public:
    enum class Answer { yes, no, emptyNo, never };

    /// Owns the name until it goes. The connection that the tests' own code uses would answer
    /// itself without the bus, so this is another.
    BusObject(const char* name, const char* path)
        : name_(QLatin1String(name)), path_(QLatin1String(path)) {
        owns = bus_.registerService(name_) && bus_.registerVirtualObject(path_, this);
    }

    ~BusObject() override {
        bus_.unregisterObject(path_);
        bus_.unregisterService(name_); // the next owner may come before the bus sees us gone
        QDBusConnection::disconnectFromBus(QStringLiteral("other"));
    }

    BusObject(const BusObject&) = delete;
    BusObject& operator=(const BusObject&) = delete;

    bool owns = false;
    Answer answer = Answer::yes;
    QDBusMessage last;

    /// A signal, from any path.
    void tell(const QString& path,
              const char* interface,
              const char* signal,
              const QVariantList& values = {}) {
        bus_.send(busSignal(path, interface, signal, values));
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        last = message;
        if (answer == Answer::yes)
            connection.send(message.createReply());
        else if (answer != Answer::never)
            connection.send(message.createErrorReply(
                QStringLiteral("x.Refused"),
                answer == Answer::no ? QStringLiteral("not now") : QString()));
        return true;
    }

private:
    QString name_;
    QString path_;
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("other"));
};

} // namespace tessarine
