#include "launcherapp/platform/linux/system/files/UDisksTree.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QMap>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

using UDisksTree::Block;
using UDisksTree::Drive;
using UDisksTree::Tree;

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// File systems that lie on several blocks at once, of which UDisks tells each mount on one alone.
constexpr auto spreading = std::to_array<QLatin1StringView>({
    QLatin1StringView("btrfs"),
    QLatin1StringView("bcachefs"),
});

QString interfaceName(const char* name) {
    return QStringLiteral("org.freedesktop.UDisks2.") + QLatin1String(name);
}

QString objectPath(const QVariant& value) {
    const auto path = value.value<QDBusObjectPath>().path();
    return path == QStringLiteral("/") ? QString() : path; // UDisks' word for none
}

/// Paths come as bytes that end in a nul.
std::string pathFrom(const QByteArray& bytes) {
    return std::string(bytes.constData());
}

/// "/dev/sdb1" is "sdb1"; below /sys, "cciss/c0d0" is "cciss!c0d0".
std::string kernelName(std::string path) {
    constexpr std::string_view folder = "/dev/";
    if (path.starts_with(folder))
        path.erase(0, folder.size());
    std::ranges::replace(path, '/', '!');
    return path;
}

std::vector<std::string> mountPoints(const QVariant& value) {
    std::vector<std::string> paths;
    for (const auto& bytes : qdbus_cast<QList<QByteArray>>(value))
        paths.push_back(pathFrom(bytes));
    return paths;
}

/// UDisks names what goes into a drive: "flash_sd", "optical_cd", "floppy"; "thumb" is the stick
/// itself.
bool takesMedia(const QStringList& kinds) {
    return std::ranges::any_of(kinds, [](const QString& kind) {
        return kind.startsWith(QStringLiteral("flash")) ||
               kind.startsWith(QStringLiteral("optical")) ||
               kind.startsWith(QStringLiteral("floppy"));
    });
}

Drive driveFrom(const QString& path, const QVariantMap& values) {
    const auto text = [&](const char* key) {
        return values.value(QLatin1String(key)).toString().trimmed();
    };
    const auto isSet = [&](const char* key) { return values.value(QLatin1String(key)).toBool(); };
    const auto name = (text("Vendor") + QLatin1Char(' ') + text("Model")).trimmed();
    return {.path = path,
            .name = name.isEmpty() ? "A drive" : name.toStdString(),
            .isExternal = isSet("Ejectable") || isSet("Removable") || isSet("MediaRemovable"),
            .hasMedium = isSet("MediaAvailable") || !isSet("MediaRemovable"),
            .staysPluggedIn =
                takesMedia(values.value(QStringLiteral("MediaCompatibility")).toStringList()),
            .canEject = isSet("Ejectable"),
            .canPowerOff = isSet("CanPowerOff"),
            .sibling = text("SiblingId").toStdString()};
}

Block blockFrom(const QString& path, const Interfaces& interfaces) {
    const auto values = interfaces.value(interfaceName("Block"));
    const auto value = [&](const char* key) { return values.value(QLatin1String(key)); };
    const auto of = [&](const char* interface, const char* key) {
        return interfaces.value(interfaceName(interface)).value(QLatin1String(key));
    };
    const auto label = value("IdLabel").toString();
    const auto holds = value("IdType").toString();
    Block block{.path = path,
                .drive = objectPath(value("Drive")),
                .below = objectPath(value("CryptoBackingDevice")),
                .device = kernelName(pathFrom(value("Device").toByteArray())),
                .name = label.isEmpty() ? pathFrom(value("PreferredDevice").toByteArray())
                                        : label.toStdString(),
                .fileSystemID = std::ranges::count(spreading, holds) > 0
                                    ? value("IdUUID").toString().toStdString()
                                    : std::string(),
                .mounts = mountPoints(of("Filesystem", "MountPoints")),
                .isSystem = value("HintSystem").toBool() &&
                            objectPath(value("CryptoBackingDevice")).isEmpty(),
                // "LVM2_member", "linux_raid_member", "zfs_member"; bcache calls itself that.
                .isPartOfMore =
                    holds.endsWith(QStringLiteral("_member")) || holds == QStringLiteral("bcache"),
                .isSwap = of("Swapspace", "Active").toBool()};
    if (block.below.isEmpty())
        block.below = objectPath(of("Partition", "Table"));
    block.isUnlocked = !objectPath(of("Encrypted", "CleartextDevice")).isEmpty();
    if (interfaces.contains(interfaceName("Loop")))
        block.imageUser = of("Loop", "SetupByUID").toUInt();
    return block;
}

} // namespace

std::optional<Tree> UDisksTree::read(const QDBusMessage& answer) {
    [[maybe_unused]] static const bool registered = [] {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
        return true;
    }();
    if (answer.signature() != QLatin1String("a{oa{sa{sv}}}"))
        return std::nullopt;
    const auto objects = qdbus_cast<Objects>(answer.arguments().constFirst());
    Tree tree;
    for (auto each = objects.begin(); each != objects.end(); ++each) {
        const auto path = each.key().path();
        if (each->contains(interfaceName("Drive")))
            tree.drives.push_back(driveFrom(path, each->value(interfaceName("Drive"))));
        if (each->contains(interfaceName("Block")))
            tree.blocks.push_back(blockFrom(path, *each));
    }
    return tree;
}

} // namespace tessarine
