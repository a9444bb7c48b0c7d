#pragma once

#include "tests/linux/BusObject.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tessarine {

/// Other programs of the tests' own bus, all in one: whatever names a test gives it, it notes each
/// call and answers by the method's name. A method without an answer is refused.
class Services : public QDBusVirtualObject {
public:
    using Answer = std::function<QVariantList(const QDBusMessage& call)>;

    Services() { bus_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath); }

    ~Services() override {
        bus_.unregisterObject(QStringLiteral("/"));
        for (const auto& name : names_)
            bus_.unregisterService(name);
        QDBusConnection::disconnectFromBus(QStringLiteral("services"));
    }

    Services(const Services&) = delete;
    Services& operator=(const Services&) = delete;

    bool own(const char* name) {
        names_.push_back(QLatin1String(name));
        return bus_.registerService(names_.back());
    }

    void answer(const char* method, QVariantList values = {}) {
        answers[method] = [values = std::move(values)](const QDBusMessage&) { return values; };
    }

    /// A signal, from any path.
    void tell(const QString& path,
              const char* interface,
              const char* signal,
              const QVariantList& values) {
        bus_.send(busSignal(path, interface, signal, values));
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const auto method = message.member().toStdString();
        std::string call = message.path().toStdString() + " " +
                           message.interface().section(QLatin1Char('.'), -1).toStdString() + "." +
                           method + "(";
        for (const auto& value : message.arguments())
            call += (call.back() == '(' ? "" : ",") + printed(value);
        calls.push_back(call + ")");
        if (hung.contains(method))
            return true;
        const auto found = answers.find(method);
        connection.send(found != answers.end()
                            ? message.createReply(found->second(message))
                            : message.createErrorReply(refusals.contains(method)
                                                           ? QLatin1String(refusals.at(method))
                                                           : QLatin1String("x.Refused"),
                                                       QStringLiteral("not now")));
        return true;
    }

    /// The calls that are no questions.
    std::vector<std::string> acts() const {
        std::vector<std::string> found;
        for (const auto& call : calls) {
            if (call.find(".Can") == std::string::npos && call.find(".Get") == std::string::npos)
                found.push_back(call);
        }
        return found;
    }

    std::map<std::string, Answer> answers;
    std::map<std::string, const char*> refusals; ///< the error's name, of methods without answer
    std::map<std::string, bool> hung;            ///< methods that are never answered
    std::vector<std::string> calls;              ///< "/path Interface.Method(values)"

private:
    /// Types that a service tells apart look different.
    static std::string printed(const QVariant& value) {
        if (value.userType() == qMetaTypeId<QDBusVariant>())
            return "<" + printed(value.value<QDBusVariant>().variant()) + ">";
        const auto text = value.toString().toStdString();
        if (value.userType() == QMetaType::UInt)
            return text + "u";
        return value.userType() == QMetaType::QString && text.empty() ? "\"\"" : text;
    }

    std::vector<QString> names_;
    QDBusConnection bus_ =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("services"));
};

} // namespace tessarine
