#include "launcherapp/platform/linux/SystemdScope.h"

#include "launcherapp/platform/linux/SessionBus.h"

#include <fmt/format.h>

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <cctype>

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

bool isPlain(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.' || c == '_' || c == ':';
}

/// systemd's escaping of a string in a unit name (systemd.unit, "String escaping").
std::string escaped(std::string_view name) {
    std::string result;
    for (const char c : name) {
        if (isPlain(c))
            result += c;
        else
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
    }
    return result;
}

std::string unescaped(std::string_view name) {
    std::string result;
    while (!name.empty()) {
        if (name.size() >= 4 && name.starts_with("\\x")) {
            const auto digits = std::string(name.substr(2, 2));
            result += static_cast<char>(std::stoi("0" + digits, nullptr, 16));
            name.remove_prefix(4);
            continue;
        }
        result += name.front();
        name.remove_prefix(1);
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
        bus->asyncCall(
            startTransientUnit(QString::fromStdString(unitName(process, name)), process));
}

std::string SystemdScope::applicationID(std::string_view unit) {
    if (!unit.starts_with("app-"))
        return {};
    unit.remove_prefix(4);
    if (unit.ends_with(".service")) {
        // app[-<launcher>]-<id>[@<number>].service
        unit.remove_suffix(std::string_view(".service").size());
        unit = unit.substr(0, unit.find('@'));
    } else if (unit.ends_with(".scope")) {
        // app[-<launcher>]-<id>-<number>.scope
        unit.remove_suffix(std::string_view(".scope").size());
        const auto dash = unit.rfind('-');
        if (dash == std::string_view::npos)
            return {};
        unit = unit.substr(0, dash);
    } else {
        return {};
    }
    // A dash of the id itself is escaped, so what stands before the last one is the launcher.
    return unescaped(unit.substr(unit.rfind('-') + 1));
}

} // namespace tessarine
