#include "launcherapp/platform/linux/input/portal/PortalShortcut.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace tessarine {

QDBusArgument& operator<<(QDBusArgument& argument, const PortalEntry& entry) {
    argument.beginStructure();
    argument << entry.name << entry.values;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalEntry& entry) {
    argument.beginStructure();
    argument >> entry.name >> entry.values;
    argument.endStructure();
    return argument;
}

void registerPortalEntries() {
    qDBusRegisterMetaType<PortalEntry>();
    qDBusRegisterMetaType<QList<PortalEntry>>();
}

std::optional<PortalTriggers> portalTriggers(const QVariant& value) {
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a(sa{sv})"))
        return std::nullopt;
    PortalTriggers triggers;
    for (const auto& entry : qdbus_cast<QList<PortalEntry>>(argument))
        triggers[entry.name.toStdString()] = entry.values[QStringLiteral("trigger_description")]
                                                 .toString()
                                                 .simplified()
                                                 .toStdString();
    return triggers;
}

} // namespace tessarine
