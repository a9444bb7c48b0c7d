#include "launcherapp/platform/linux/system/screen/PortalScreenshot.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/system/BusTargets.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QObject>
#include <QPointer>
#include <QRandomGenerator>
#include <QVariantMap>
#include <utility>

namespace tessarine {

namespace {

constexpr auto requestInterface = "org.freedesktop.portal.Request";

/// Of a portal's request: done, taken back by the user, or anything else.
enum class Response : unsigned { done = 0, cancelled = 1 };

/// No other program can guess it, nor an earlier request of ours have it.
QString newToken() {
    return QStringLiteral("tessarine%1").arg(QRandomGenerator::system()->generate64(), 0, 16);
}

/// XDG Desktop Portal, "Request": so the answer can be listened to before the question is sent.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    auto sender = bus.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

} // namespace

/// One question to the portal; it goes when it is answered.
class PortalRequest : public QObject {
    Q_OBJECT

public:
    PortalRequest(EffectWays::Doors doors, QDBusConnection bus, EffectDone done)
        : doors_(std::move(doors)), bus_(std::move(bus)), done_(std::move(done)) {}

    void send() {
        const auto token = newToken();
        path_ = requestPath(bus_, token);
        bus_.connect(QString(),
                     path_,
                     QLatin1String(requestInterface),
                     QStringLiteral("Response"),
                     this,
                     SLOT(responded(QDBusMessage)));
        const QVariantMap options{{QStringLiteral("handle_token"), token},
                                  {QStringLiteral("interactive"), true}};
        // The answer to the call is only that the question was taken; the user's comes later.
        askBus(bus_,
               BusTargets::portalScreenshot.call("Screenshot", {QString(), options}),
               doors_->patience.act,
               [self = QPointer(this)](const QDBusMessage& reply) {
                   if (!self)
                       return;
                   if (auto problem = busProblem(reply))
                       return self->end(std::move(problem));
                   self->portal_ = reply.service();
               });
        doors_->queue.postAfter(doors_->patience.user, [self = QPointer(this)] {
            if (self)
                self->giveUp();
        });
    }

private Q_SLOTS:

    void responded(const QDBusMessage& message) {
        // The portal answers the call first, and whoever else sends this is no portal.
        if (message.service() != portal_)
            return;
        const auto values = message.arguments();
        if (message.signature() != QLatin1String("ua{sv}"))
            return end("the desktop portal gave an answer that can't be read");
        const auto response = static_cast<Response>(values[0].toUInt());
        if (response == Response::cancelled)
            return end(std::nullopt);
        const auto results = qdbus_cast<QVariantMap>(values[1]);
        const auto file =
            Urls::filePath(results.value(QStringLiteral("uri")).toString().toStdString());
        if (response != Response::done || !file)
            return end("the desktop portal took no picture");
        const auto done = std::exchange(done_, nullptr);
        if (done)
            doors_->copyImage(*file, done);
        end(std::nullopt);
    }

private:
    /// Its window would stay, and what is chosen in it later would go nowhere.
    void giveUp() {
        const auto path = path_.toUtf8();
        const BusTarget request{
            BusTargets::portalScreenshot.service, path.constData(), requestInterface};
        callBus(bus_, request.call("Close"), doors_->patience.question, [](const auto&) {});
        end("the desktop portal did not answer");
    }

    void end(std::optional<std::string> problem) {
        if (const auto done = std::exchange(done_, nullptr))
            done(std::move(problem));
        deleteLater();
    }

    EffectWays::Doors doors_;
    QDBusConnection bus_;
    EffectDone done_;
    QString path_;
    QString portal_; ///< its own name on the bus, once it has answered
};

EffectWay PortalScreenshot::way(const EffectWays::Doors& doors, const QDBusConnection& bus) {
    return
        [doors, bus](EffectDone done) { (new PortalRequest(doors, bus, std::move(done)))->send(); };
}

} // namespace tessarine

#include "PortalScreenshot.moc"
