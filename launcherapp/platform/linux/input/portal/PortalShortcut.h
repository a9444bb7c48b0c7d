#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>
#include <compare>
#include <map>
#include <optional>
#include <string>

class QDBusArgument;

namespace tessarine {

/// A shortcut as it is asked for.
struct PortalShortcut {
    std::string name; ///< the same at each start: the desktop remembers the user's choice by it
    std::string description;
    std::string trigger; ///< preferred, as portals write it

    auto operator<=>(const PortalShortcut&) const = default;
};

/// What the desktop calls the keys of each shortcut, by its name: "Meta+Space". Empty for one that
/// it knows and has told no keys for.
using PortalTriggers = std::map<std::string, std::string>;

/// One of "a(sa{sv})", the list of shortcuts on the bus: a name and what is said of it.
struct PortalEntry {
    QString name;
    QVariantMap values;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalEntry& entry);
const QDBusArgument& operator>>(const QDBusArgument& argument, PortalEntry& entry);

/// Lets the bus library write lists of them. As often as one likes.
void registerPortalEntries();

/// A value of a message as such a list; nothing for one of another type.
std::optional<PortalTriggers> portalTriggers(const QVariant& value);

} // namespace tessarine

Q_DECLARE_METATYPE(tessarine::PortalEntry)
