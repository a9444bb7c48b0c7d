#include "launcherapp/platform/linux/input/portal/ShortcutsSession.h"

#include "launcherapp/platform/linux/desktop/SummonsToken.h"
#include "launcherapp/platform/linux/portal/DesktopPortal.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QVariant>
#include <utility>

namespace tessarine {

namespace {

constexpr auto interface = "GlobalShortcuts";
constexpr auto oddAnswer = "the desktop portal tells of its shortcuts in a way that can't be read";

} // namespace

ShortcutsSession::ShortcutsSession(QDBusConnection bus,
                                   std::vector<PortalShortcut> shortcuts,
                                   Events events)
    : bus_(std::move(bus)), shortcuts_(std::move(shortcuts)), events_(std::move(events)) {
    registerPortalEntries();
    ask("CreateSession",
        {},
        {{QStringLiteral("session_handle_token"), PortalRequest::freshToken()}},
        [this](const PortalRequest::Answer& answer) { created(answer); });
}

ShortcutsSession::~ShortcutsSession() {
    close();
}

void ShortcutsSession::close() {
    events_ = {};
    if (request_ && !request_->isAnswered())
        delete request_;
    const auto handle = std::exchange(handle_, {});
    if (!handle.isEmpty())
        bus_.send(QDBusMessage::createMethodCall(DesktopPortal::service(),
                                                 handle,
                                                 QStringLiteral("org.freedesktop.portal.Session"),
                                                 QStringLiteral("Close")));
}

void ShortcutsSession::ask(const char* method,
                           const QVariantList& arguments,
                           QVariantMap options,
                           std::function<void(const PortalRequest::Answer& answer)> answered) {
    auto call = DesktopPortal::call(interface, method);
    call.setArguments(arguments);
    request_ =
        new PortalRequest(bus_, std::move(call), std::move(options), std::move(answered), this);
}

void ShortcutsSession::created(const PortalRequest::Answer& answer) {
    if (answer.kind != PortalRequest::Answer::Kind::given)
        return endAs(answer);
    const auto handle = answer.results[QStringLiteral("session_handle")];
    handle_ = handle.canConvert<QDBusObjectPath>() ? handle.value<QDBusObjectPath>().path()
                                                   : handle.toString();
    if (!handle_.startsWith(QLatin1Char('/'))) {
        handle_.clear();
        return end(End::failed, oddAnswer);
    }
    const auto shortcuts = "org.freedesktop.portal.GlobalShortcuts";
    listen(handle_, "org.freedesktop.portal.Session", "Closed", SLOT(closed(QDBusMessage)));
    listen(DesktopPortal::path(), shortcuts, "Activated", SLOT(activated(QDBusMessage)));
    listen(DesktopPortal::path(), shortcuts, "Deactivated", SLOT(deactivated(QDBusMessage)));
    listen(DesktopPortal::path(), shortcuts, "ShortcutsChanged", SLOT(changed(QDBusMessage)));
    bind();
}

void ShortcutsSession::listen(const QString& path,
                              const char* from,
                              const char* signal,
                              const char* slot) {
    bus_.connect(
        DesktopPortal::service(), path, QLatin1String(from), QLatin1String(signal), this, slot);
}

void ShortcutsSession::bind() {
    QList<PortalEntry> entries;
    for (const auto& [name, description, trigger] : shortcuts_)
        entries.push_back(
            {.name = QString::fromStdString(name),
             .values = {{QStringLiteral("description"), QString::fromStdString(description)},
                        {QStringLiteral("preferred_trigger"), QString::fromStdString(trigger)}}});
    const QString noParentWindow;
    ask("BindShortcuts",
        {QVariant::fromValue(QDBusObjectPath(handle_)),
         QVariant::fromValue(entries),
         noParentWindow},
        {},
        [this](const PortalRequest::Answer& answer) { answered(answer, false); });
}

/// For a portal that binds without saying to what.
void ShortcutsSession::readBack() {
    ask("ListShortcuts",
        {QVariant::fromValue(QDBusObjectPath(handle_))},
        {},
        [this](const PortalRequest::Answer& answer) { answered(answer, true); });
}

void ShortcutsSession::answered(const PortalRequest::Answer& answer, bool isReadBack) {
    if (answer.kind != PortalRequest::Answer::Kind::given)
        return endAs(answer);
    const auto key = QStringLiteral("shortcuts");
    if (!answer.results.contains(key) && !isReadBack)
        return readBack();
    const auto triggers = portalTriggers(answer.results[key]);
    if (!triggers)
        return end(End::failed, oddAnswer);
    isAnswered_ = true;
    if (events_.bound)
        events_.bound(*triggers);
}

void ShortcutsSession::endAs(const PortalRequest::Answer& answer) {
    switch (answer.kind) {
    case PortalRequest::Answer::Kind::given:
    case PortalRequest::Answer::Kind::failed:
        return end(End::failed, answer.problem);
    case PortalRequest::Answer::Kind::missing:
        return end(End::refused, "this desktop's portal gives programs no keys");
    case PortalRequest::Answer::Kind::refused:
        return end(End::refused, "the desktop's portal does not grant it");
    case PortalRequest::Answer::Kind::declined:
        return end(End::declined, {});
    }
}

void ShortcutsSession::end(End how, const std::string& reason) {
    const auto events = std::exchange(events_, {});
    if (events.ended)
        events.ended(how, reason);
}

bool ShortcutsSession::isOurs(const QDBusMessage& message, const char* signature) const {
    return message.signature() == QLatin1String(signature) &&
           message.arguments().constFirst().value<QDBusObjectPath>().path() == handle_;
}

void ShortcutsSession::activated(const QDBusMessage& message) {
    if (!isOurs(message, "osta{sv}") || !events_.activated)
        return;
    const auto arguments = message.arguments();
    const SummonsToken token(
        SummonsToken::inShortcutOptions(qdbus_cast<QVariantMap>(arguments[3])));
    events_.activated(arguments[1].toString().toStdString(),
                      static_cast<std::uint32_t>(arguments[2].toULongLong()));
}

void ShortcutsSession::deactivated(const QDBusMessage& message) {
    if (isOurs(message, "osta{sv}") && events_.deactivated)
        events_.deactivated(message.arguments()[1].toString().toStdString());
}

void ShortcutsSession::changed(const QDBusMessage& message) {
    // While the user is asked, a change is no answer.
    if (!isOurs(message, "oa(sa{sv})") || !events_.bound || !isAnswered_)
        return;
    if (const auto triggers = portalTriggers(message.arguments()[1]))
        events_.bound(*triggers);
}

void ShortcutsSession::closed(const QDBusMessage&) {
    handle_.clear();
    end(End::failed, "the desktop has ended the program's shortcuts");
}

} // namespace tessarine
