#include "launcherapp/platform/linux/desktop/PortalAppearance.h"

#include "launcherapp/platform/linux/desktop/PortalListener.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <array>
#include <cmath>
#include <tuple>
#include <utility>

namespace tessarine {

namespace {

// XDG Desktop Portal, "Settings".
const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto colorSchemeKey = QStringLiteral("color-scheme");
const auto accentKey = QStringLiteral("accent-color");
const auto reducedMotionKey = QStringLiteral("reduced-motion");
// Portals older than the key above pass on GNOME's own, which other desktops have copied.
const auto gnomeInterface = QStringLiteral("org.gnome.desktop.interface");
const auto animationsKey = QStringLiteral("enable-animations");

/// Three parts of sRGB, each from 0 to 1; the portal asks that any other number be taken for no
/// colour at all.
std::optional<std::uint32_t> colorIn(const QVariant& value) {
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return std::nullopt;
    const auto structure = value.value<QDBusArgument>();
    if (structure.currentSignature() != QLatin1String("(ddd)"))
        return std::nullopt;
    std::array<double, 3> parts{};
    structure.beginStructure();
    for (auto& part : parts)
        structure >> part;
    structure.endStructure();
    std::uint32_t color = 0;
    for (const double part : parts) {
        if (!(part >= 0 && part <= 1))
            return std::nullopt;
        color = color << 8 | static_cast<std::uint32_t>(std::lround(part * 255));
    }
    return color;
}

using Settings = QMap<QString, QVariantMap>;

} // namespace

PortalAppearance::Listener::Listener(PortalAppearance& owner, QDBusConnection bus) : owner_(owner) {
    // First the signal, so that no change falls between the answer and the listening.
    bus.connect(service,
                path,
                interface,
                QStringLiteral("SettingChanged"),
                this,
                SLOT(settingChanged(QDBusMessage)));
    auto message =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    message << QStringList{appearance, gnomeInterface};
    const auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &Listener::answered);
}

void PortalAppearance::Listener::settingChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (message.signature() == QLatin1String("ssv"))
        note(arguments[0].toString(),
             arguments[1].toString(),
             arguments[2].value<QDBusVariant>().variant());
}

void PortalAppearance::Listener::answered(QDBusPendingCallWatcher* watcher) {
    watcher->deleteLater();
    const QDBusMessage reply = watcher->reply();
    if (reply.type() != QDBusMessage::ReplyMessage ||
        reply.signature() != QLatin1String("a{sa{sv}}")) {
        if (owner_.problem_)
            owner_.problem_("no settings portal answers: " + reply.errorMessage().toStdString());
        return;
    }
    const auto settings = qdbus_cast<Settings>(reply.arguments().constFirst());
    for (auto group = settings.begin(); group != settings.end(); ++group) {
        for (auto each = group->begin(); each != group->end(); ++each)
            note(group.key(), each.key(), each.value());
    }
}

void PortalAppearance::Listener::note(const QString& group,
                                      const QString& key,
                                      const QVariant& value) {
    const auto all = [this] {
        return std::tuple(owner_.colorScheme_, owner_.motion_, owner_.accent_);
    };
    const auto before = all();
    if (group == appearance && key == colorSchemeKey) {
        const auto scheme = value.toUInt();
        owner_.colorScheme_ = scheme == 1   ? ColorScheme::dark
                              : scheme == 2 ? ColorScheme::light
                                            : ColorScheme::none;
    } else if (group == appearance && key == accentKey) {
        owner_.accent_ = colorIn(value);
    } else if (group == appearance && key == reducedMotionKey) {
        owner_.motion_ = value.toUInt() == 1 ? Motion::reduced : Motion::full;
    } else if (group == gnomeInterface && key == animationsKey) {
        owner_.motion_ = value.toBool() ? Motion::full : Motion::reduced;
    }
    if (before != all())
        owner_.observers_.tell();
}

PortalAppearance::PortalAppearance(std::function<void(const std::string&)> problem)
    : problem_(std::move(problem)) {
    if (const auto bus = sessionBus())
        listener_ = std::make_unique<Listener>(*this, *bus);
    else if (problem_)
        problem_("there is no session bus to ask");
}

PortalAppearance::~PortalAppearance() = default;

Subscription PortalAppearance::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

} // namespace tessarine
