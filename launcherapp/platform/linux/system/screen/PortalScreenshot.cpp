#include "launcherapp/platform/linux/system/screen/PortalScreenshot.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/platform/linux/portal/DesktopPortal.h"
#include "launcherapp/platform/linux/portal/PortalRequest.h"

#include <QCoreApplication>
#include <QPointer>
#include <QVariantMap>
#include <memory>
#include <utility>

namespace tessarine {

namespace {

using Answer = PortalRequest::Answer;

/// What is to be said of an answer; the picture is copied.
void answered(const EffectWays::Doors& doors, const Answer& answer, const EffectDone& done) {
    switch (answer.kind) {
    case Answer::Kind::declined:
        return done(std::nullopt);
    case Answer::Kind::failed:
        return done(answer.problem);
    case Answer::Kind::missing:
    case Answer::Kind::refused:
    case Answer::Kind::given:
        break;
    }
    const auto file =
        Urls::filePath(answer.results.value(QStringLiteral("uri")).toString().toStdString());
    if (!file)
        return done("the desktop portal took no picture");
    doors->copyImage(*file, done);
}

void take(const EffectWays::Doors& doors, const QDBusConnection& bus, EffectDone done) {
    auto call = DesktopPortal::call("Screenshot", "Screenshot");
    const QString noParentWindow;
    call << noParentWindow;
    const auto once = std::make_shared<EffectDone>(std::move(done));
    // It ends with the program at the latest.
    const QPointer request = new PortalRequest(
        bus,
        std::move(call),
        {{QStringLiteral("interactive"), true}},
        [doors, once](const Answer& answer) { answered(doors, answer, *once); },
        QCoreApplication::instance(),
        doors->patience.act);
    doors->queue.postAfter(doors->patience.user, [request, once] {
        if (!request || request->isAnswered())
            return;
        // Its window would stay, and what is chosen in it later would go nowhere.
        delete request;
        (*once)("the desktop portal did not answer");
    });
}

} // namespace

EffectWay PortalScreenshot::way(const EffectWays::Doors& doors, const QDBusConnection& bus) {
    return [doors, bus](EffectDone done) { take(doors, bus, std::move(done)); };
}

} // namespace tessarine
