#include "launcherapp/platform/linux/portal/DesktopPortal.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tessarine {

namespace {

struct Meaning {
    std::string_view error; ///< how the error's name goes on after "org.freedesktop.DBus.Error."
    std::string_view words;
};

constexpr std::string_view noPortal = "no desktop portal runs here";
constexpr std::string_view silent = "the desktop portal does not answer";

constexpr auto meanings =
    std::to_array<Meaning>({{"ServiceUnknown", noPortal},
                            {"NameHasNoOwner", noPortal},
                            {"Spawn", noPortal},
                            {"NoReply", silent},
                            {"Timeout", silent},
                            {"TimedOut", silent},
                            {"UnknownObject", "the desktop portal is not ready yet"}});

constexpr auto unknownThings =
    std::to_array<std::string_view>({"UnknownInterface", "UnknownMethod"});

/// What the bus's own errors are called; empty for another's.
std::string ownName(const QDBusMessage& error) {
    constexpr std::string_view errors = "org.freedesktop.DBus.Error.";
    const auto name = error.errorName().toStdString();
    return name.starts_with(errors) ? name.substr(errors.size()) : std::string();
}

/// Null for those of the portal's own.
const Meaning* meaningOf(const QDBusMessage& error) {
    const auto name = ownName(error);
    const auto known = std::ranges::find_if(
        meanings, [&](const Meaning& meaning) { return name.starts_with(meaning.error); });
    return known == meanings.end() ? nullptr : &*known;
}

} // namespace

QString DesktopPortal::service() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}

QString DesktopPortal::path() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}

QDBusMessage DesktopPortal::call(const char* interface, const char* method) {
    return QDBusMessage::createMethodCall(service(),
                                          path(),
                                          QStringLiteral("org.freedesktop.portal.") +
                                              QLatin1String(interface),
                                          QLatin1String(method));
}

bool DesktopPortal::isMissing(const QDBusMessage& reply) {
    return std::ranges::count(unknownThings, ownName(reply)) > 0;
}

bool DesktopPortal::isRefusal(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ErrorMessage && !isMissing(reply) && !meaningOf(reply);
}

std::string DesktopPortal::problem(const QDBusMessage& error) {
    if (const auto* const known = meaningOf(error))
        return std::string(known->words);
    return "the desktop portal says: " + busProblem(error).value_or("nothing");
}

} // namespace tessarine
