#include "launcherapp/platform/linux/portal/PortalRequest.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/portal/DesktopPortal.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QPointer>
#include <QUuid>
#include <utility>

namespace tessarine {

namespace {

const auto interface = QStringLiteral("org.freedesktop.portal.Request");
constexpr auto oddAnswer = "the desktop portal gave an answer that can't be read";

} // namespace

QString PortalRequest::freshToken() {
    return QStringLiteral("tessarine_") + QUuid::createUuid().toString(QUuid::Id128);
}

PortalRequest::PortalRequest(QDBusConnection bus,
                             QDBusMessage call,
                             QVariantMap options,
                             std::function<void(const Answer& answer)> answered,
                             QObject* parent,
                             Seconds patience)
    : QObject(parent), bus_(std::move(bus)), answered_(std::move(answered)) {
    const auto token = freshToken();
    // First the signal, which may come before the reply to the call. The bus passes on what the
    // portal itself sends, whoever else sends the like.
    const auto sender = bus_.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    listen(DesktopPortal::path() + QStringLiteral("/request/") + sender + QLatin1Char('/') + token);
    options[QStringLiteral("handle_token")] = token;
    call << options;
    askBus(bus_, call, patience, [self = QPointer(this)](const QDBusMessage& reply) {
        if (self)
            self->accepted(reply);
    });
}

PortalRequest::~PortalRequest() {
    if (!answered_)
        return;
    bus_.send(QDBusMessage::createMethodCall(
        DesktopPortal::service(), path_, interface, QStringLiteral("Close")));
}

void PortalRequest::listen(const QString& path) {
    path_ = path;
    bus_.connect(DesktopPortal::service(),
                 path,
                 interface,
                 QStringLiteral("Response"),
                 this,
                 SLOT(responded(QDBusMessage)));
}

void PortalRequest::accepted(const QDBusMessage& reply) {
    if (!answered_)
        return;
    if (DesktopPortal::isMissing(reply))
        return finish({.kind = Answer::Kind::missing});
    if (reply.type() != QDBusMessage::ReplyMessage)
        return finish({.kind = Answer::Kind::failed, .problem = DesktopPortal::problem(reply)});
    if (reply.signature() != QLatin1String("o"))
        return finish({.kind = Answer::Kind::failed, .problem = oddAnswer});
    // Portals older than 0.9 choose the path themselves.
    const auto path = reply.arguments().constFirst().value<QDBusObjectPath>().path();
    if (path != path_)
        listen(path);
}

void PortalRequest::responded(const QDBusMessage& message) {
    if (!answered_)
        return;
    if (message.signature() != QLatin1String("ua{sv}"))
        return finish({.kind = Answer::Kind::failed, .problem = oddAnswer});
    switch (message.arguments()[0].toUInt()) {
    case 0:
        return finish({.kind = Answer::Kind::given,
                       .results = qdbus_cast<QVariantMap>(message.arguments()[1])});
    case 1:
        return finish({.kind = Answer::Kind::declined});
    default:
        return finish({.kind = Answer::Kind::refused});
    }
}

void PortalRequest::finish(Answer answer) {
    const auto answered = std::exchange(answered_, {});
    deleteLater();
    answered(answer);
}

} // namespace tessarine
