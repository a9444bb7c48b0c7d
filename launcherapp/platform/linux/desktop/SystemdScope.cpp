#include "launcherapp/platform/linux/desktop/SystemdScope.h"

#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <fmt/format.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <charconv>
#include <optional>
#include <system_error>

namespace tessarine {

/// One property of a unit: D-Bus type (sv).
struct UnitProperty {
    QString name;
    QDBusVariant value;
};

/// An auxiliary unit: D-Bus type (sa(sv)); none is ever made.
struct AuxiliaryUnit {
    QString name;
    QList<UnitProperty> properties;
};

QDBusArgument& operator<<(QDBusArgument& argument, const UnitProperty& property) {
    argument.beginStructure();
    argument << property.name << property.value;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, UnitProperty& property) {
    argument.beginStructure();
    argument >> property.name >> property.value;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const AuxiliaryUnit& unit) {
    argument.beginStructure();
    argument << unit.name << unit.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, AuxiliaryUnit& unit) {
    argument.beginStructure();
    argument >> unit.name >> unit.properties;
    argument.endStructure();
    return argument;
}

} // namespace tessarine

Q_DECLARE_METATYPE(tessarine::UnitProperty)
Q_DECLARE_METATYPE(tessarine::AuxiliaryUnit)

namespace tessarine {

namespace {

/// Leaves room for the rest in the 255 bytes that a unit's name may have.
constexpr std::size_t longestEscapedName = 200;

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == ':';
}

/// systemd's escaping of a string in a unit name (systemd.unit, "String escaping").
std::string escaped(std::string_view name) {
    std::string result;
    for (const char c : name) {
        const auto next = isPlain(c) ? std::string(1, c)
                                     : fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
        if (result.size() + next.size() > longestEscapedName)
            break;
        result += next;
    }
    return result;
}

/// The character of an escape "\x2d" at the beginning; nothing when there is none.
std::optional<char> escapedCharacter(std::string_view text) {
    if (text.size() < 4 || !text.starts_with("\\x"))
        return std::nullopt;
    unsigned char value = 0;
    const auto [end, error] = std::from_chars(text.data() + 2, text.data() + 4, value, 16);
    return error == std::errc{} && end == text.data() + 4 ? std::optional(static_cast<char>(value))
                                                          : std::nullopt;
}

std::string unescaped(std::string_view name) {
    std::string result;
    while (!name.empty()) {
        const auto character = escapedCharacter(name);
        result += character.value_or(name.front());
        name.remove_prefix(character ? 4 : 1);
    }
    return result;
}

QDBusMessage startTransientUnit(const QString& unit, std::int64_t process) {
    const auto property = [](const char* name, const QVariant& value) {
        return UnitProperty{QLatin1String(name), QDBusVariant(value)};
    };
    const QList<quint32> processes{static_cast<quint32>(process)};
    const QList<UnitProperty> properties{
        property("PIDs", QVariant::fromValue(processes)),
        property("Slice", QStringLiteral("app.slice")),
        property("CollectMode", QStringLiteral("inactive-or-failed")),
    };
    auto message =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.systemd1"),
                                       QStringLiteral("/org/freedesktop/systemd1"),
                                       QStringLiteral("org.freedesktop.systemd1.Manager"),
                                       QStringLiteral("StartTransientUnit"));
    message << unit << QStringLiteral("fail") << QVariant::fromValue(properties)
            << QVariant::fromValue(QList<AuxiliaryUnit>{});
    // A systemd that isn't there is not to be started for this.
    message.setAutoStartService(false);
    return message;
}

} // namespace

std::string SystemdScope::unitName(std::int64_t process, std::string_view name) {
    return fmt::format(
        "app-tessarine-{}-{}.scope", escaped(name.empty() ? "program" : name), process);
}

void SystemdScope::request(std::int64_t process, std::string_view name) {
    static const bool registered = [] {
        qDBusRegisterMetaType<UnitProperty>();
        qDBusRegisterMetaType<QList<UnitProperty>>();
        qDBusRegisterMetaType<AuxiliaryUnit>();
        qDBusRegisterMetaType<QList<AuxiliaryUnit>>();
        qDBusRegisterMetaType<QList<quint32>>();
        return true;
    }();
    Q_UNUSED(registered)
    if (auto bus = sessionBus())
        bus->send(startTransientUnit(QString::fromStdString(unitName(process, name)), process));
}

std::string SystemdScope::applicationID(std::string_view unit, std::int64_t process) {
    // app[-<launcher>]-<id>-<number>.scope; a dash of the id itself is escaped.
    constexpr std::string_view prefix = "app-";
    constexpr std::string_view suffix = ".scope";
    if (!unit.starts_with(prefix) || !unit.ends_with(suffix))
        return {};
    const bool sandbox = unit.starts_with("app-flatpak-");
    unit = unit.substr(prefix.size(), unit.size() - prefix.size() - suffix.size());
    const auto dash = unit.rfind('-');
    if (dash == std::string_view::npos)
        return {};
    if (!sandbox && unit.substr(dash + 1) != std::to_string(process))
        return {};
    unit = unit.substr(0, dash);
    return unescaped(unit.substr(unit.rfind('-') + 1));
}

} // namespace tessarine
