#include "launcherapp/platform/linux/desktop/DesktopApplication.h"

#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/desktop/SummonsToken.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVirtualObject>
#include <utility>

namespace tessarine {

namespace {

const auto interfaceName = QStringLiteral("org.freedesktop.Application");

/// The desktop entry standard 1.5, "D-Bus Activation".
const auto interfaceText = QStringLiteral(R"(
<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action_name" direction="in"/>
    <arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/>
  </method>
</interface>)");

QDBusMessage callToBus(const char* method, const QString& name) {
    auto message = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                                  QStringLiteral("/org/freedesktop/DBus"),
                                                  QStringLiteral("org.freedesktop.DBus"),
                                                  QLatin1String(method));
    message << name;
    return message;
}

} // namespace

class DesktopApplication::Object : public QDBusVirtualObject {
public:
    Object(QDBusConnection bus, const std::string& name, Handlers handlers)
        : bus_(std::move(bus)), name_(QString::fromStdString(name)),
          path_(QLatin1Char('/') + QString(name_).replace(QLatin1Char('.'), QLatin1Char('/'))),
          handlers_(std::move(handlers)) {
        // First, as a desktop that starts the program by its name calls it at once.
        bus_.registerVirtualObject(path_, this);
        requestName();
    }

    ~Object() override {
        bus_.unregisterObject(path_);
        bus_.send(callToBus("ReleaseName", name_));
    }

    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    QString introspect(const QString&) const override { return interfaceText; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        // A call may leave the interface out.
        if (!message.interface().isEmpty() && message.interface() != interfaceName)
            return false;
        const auto method =
            message.member() + QLatin1Char('(') + message.signature() + QLatin1Char(')');
        if (method == QLatin1String("Activate(a{sv})"))
            answer(message, connection, handlers_.activate);
        else if (method == QLatin1String("Open(asa{sv})"))
            connection.send(message.createReply());
        else if (method == QLatin1String("ActivateAction(sava{sv})"))
            activateAction(message, connection);
        else
            connection.send(message.createErrorReply(
                QDBusError::UnknownMethod, QStringLiteral("there is no method %1").arg(method)));
        return true;
    }

private:
    void requestName() {
        constexpr quint32 waitInTurn = 0; // the name comes when the program that has it ends
        constexpr quint32 inQueue = 2;
        auto request = callToBus("RequestName", name_);
        request << waitInTurn;
        auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(request), this);
        QObject::connect(watcher,
                         &QDBusPendingCallWatcher::finished,
                         this,
                         [this](QDBusPendingCallWatcher* finished) {
                             finished->deleteLater();
                             const QDBusPendingReply<quint32> reply = *finished;
                             if (reply.isError())
                                 tell("could not be had: " + reply.error().message().toStdString());
                             else if (reply.value() == inQueue)
                                 tell("is another program's until it ends");
                         });
    }

    void tell(const std::string& problem) const {
        if (handlers_.problem)
            handlers_.problem("D-Bus: the name " + name_.toStdString() + " " + problem);
    }

    /// Answers before it acts: the caller need not wait for a window.
    void answer(const QDBusMessage& message,
                const QDBusConnection& connection,
                const Action& action) const {
        if (const auto* reason = std::get_if<std::string>(&action)) {
            connection.send(message.createErrorReply(QDBusError::NotSupported,
                                                     QString::fromStdString(*reason)));
            if (handlers_.refused)
                handlers_.refused();
            return;
        }
        connection.send(message.createReply());
        // The platform data comes last, whichever the method.
        const SummonsToken token(
            SummonsToken::inPlatformData(qdbus_cast<QVariantMap>(message.arguments().constLast())));
        if (const auto& act = std::get<std::function<void()>>(action))
            act();
    }

    void activateAction(const QDBusMessage& message, const QDBusConnection& connection) const {
        const auto name = message.arguments().value(0).toString();
        const auto found = handlers_.actions.find(name.toStdString());
        if (found == handlers_.actions.end())
            connection.send(message.createErrorReply(
                QDBusError::InvalidArgs, QStringLiteral("there is no action \"%1\"").arg(name)));
        else
            answer(message, connection, found->second);
    }

    QDBusConnection bus_;
    QString name_;
    QString path_;
    Handlers handlers_;
};

DesktopApplication::DesktopApplication(const std::string& busName, Handlers handlers) {
    if (auto bus = sessionBus())
        object_ = std::make_unique<Object>(*std::move(bus), busName, std::move(handlers));
    else if (handlers.problem)
        handlers.problem("D-Bus: there is no session bus, so the desktop's own keys can't summon "
                         "the program");
}

DesktopApplication::~DesktopApplication() = default;

} // namespace tessarine
