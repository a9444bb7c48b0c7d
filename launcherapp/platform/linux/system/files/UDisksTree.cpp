#include "launcherapp/platform/linux/system/files/UDisksTree.h"

#include "LauncherCore/text/Folding.h"

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

using namespace UDisksTree;

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

/// Folders that the running system itself may be on; "/home" and its like too, since nobody can
/// work on without them. Live systems run from the stick that they were started from.
constexpr auto systemFolders = std::to_array<std::string_view>({
    "/boot",     "/bin",  "/cdrom", "/efi",     "/etc",  "/gnu",  "/home",        "/isodevice",
    "/lib",      "/nix",  "/opt",   "/ostree",  "/rofs", "/root", "/run/archiso", "/run/initramfs",
    "/run/live", "/sbin", "/srv",   "/sysroot", "/usr",  "/var",
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
            .canPowerOff = isSet("CanPowerOff")};
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
                .name = label.isEmpty() ? pathFrom(value("PreferredDevice").toByteArray())
                                        : label.toStdString(),
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

bool isSystemFolder(std::string_view mount) {
    return mount == "/" || std::ranges::any_of(systemFolders, [mount](std::string_view folder) {
               if (!mount.starts_with(folder))
                   return false;
               const auto below = mount.substr(folder.size());
               // Drives of the user's are at times mounted below the home folder, and images
               // anywhere.
               return below.empty() ||
                      (folder != "/home" && folder != "/root" && below.front() == '/');
           });
}

/// Of what lies in it, since UDisks takes every image, and what is unlocked, for the machine's own.
bool isUsedBySystem(const Block& block) {
    return block.isSwap || block.isPartOfMore || std::ranges::any_of(block.mounts, isSystemFolder);
}

template <typename Holds> bool any(const std::vector<const Block*>& blocks, Holds holds) {
    return std::ranges::any_of(blocks, [&](const Block* block) { return holds(*block); });
}

/// More than a disk, a partition, LUKS and a volume lie in one another: a circle ends there.
constexpr int deepest = 8;

/// The blocks that lie on one drive or image, those inside others behind them.
class Lying {
public:
    explicit Lying(const Tree& tree) : tree_(tree) {}

    std::vector<const Block*> onDrive(const QString& drive) const {
        return where([&](const Block& block) { return root(block)->drive == drive; });
    }

    std::vector<const Block*> inImage(const QString& image) const {
        return where([&](const Block& block) { return root(block)->path == image; });
    }

private:
    /// The outermost that a block lies in.
    const Block* root(const Block& block) const {
        const auto* outer = &block;
        for (int depth = 0; depth < deepest && !outer->below.isEmpty(); ++depth) {
            const auto found = std::ranges::find(tree_.blocks, outer->below, &Block::path);
            if (found == tree_.blocks.end())
                break;
            outer = &*found;
        }
        return outer;
    }

    template <typename Holds> std::vector<const Block*> where(Holds holds) const {
        std::vector<const Block*> found;
        for (const auto& block : tree_.blocks) {
            if (holds(block))
                found.push_back(&block);
        }
        return found;
    }

    const Tree& tree_;
};

constexpr auto filesystem = "org.freedesktop.UDisks2.Filesystem";
constexpr auto encrypted = "org.freedesktop.UDisks2.Encrypted";
constexpr auto driveInterface = "org.freedesktop.UDisks2.Drive";
constexpr auto loop = "org.freedesktop.UDisks2.Loop";

/// First every file system, then every lock, as one may lie in the other.
std::vector<Step> release(const std::vector<const Block*>& blocks) {
    std::vector<Step> steps;
    for (const auto* block : blocks) {
        // Each call undoes one mount.
        for (std::size_t i = 0; i < block->mounts.size(); ++i)
            steps.push_back({block->path, filesystem, "Unmount"});
    }
    for (const auto* block : blocks) {
        if (block->isUnlocked)
            steps.push_back({block->path, encrypted, "Lock"});
    }
    return steps;
}

/// A whole stick or disk loses its power, which also writes what the drive itself holds back. A
/// reader stays, as it could not be used again until it is plugged in anew.
std::optional<Step> farewell(const Drive& drive) {
    if (drive.canPowerOff && !drive.staysPluggedIn)
        return Step{drive.path, driveInterface, "PowerOff"};
    if (drive.canEject)
        return Step{drive.path, driveInterface, "Eject"};
    return std::nullopt;
}

} // namespace

std::optional<Tree> UDisksTree::read(const QDBusMessage& answer) {
    static const bool registered = [] {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
        return true;
    }();
    Q_UNUSED(registered)
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

std::vector<Ejection> UDisksTree::ejections(const Tree& tree, unsigned user) {
    const Lying lying(tree);
    std::vector<Ejection> result;
    // Images first: their files may lie on the drives.
    for (const auto& image : tree.blocks) {
        if (image.imageUser != user || user == 0) // the system's own are set up by its user, 0
            continue;
        const auto blocks = lying.inImage(image.path);
        if (any(blocks, isUsedBySystem))
            continue;
        auto steps = release(blocks);
        steps.push_back({image.path, loop, "Delete"});
        result.push_back({.name = image.name, .steps = std::move(steps)});
    }
    for (const auto& drive : tree.drives) {
        const auto blocks = lying.onDrive(drive.path);
        const bool isKept = any(blocks, isUsedBySystem) || any(blocks, [&](const Block& block) {
                                return block.isSystem && block.drive == drive.path;
                            });
        if (!drive.isExternal || !drive.hasMedium || isKept)
            continue;
        auto steps = release(blocks);
        if (const auto last = farewell(drive))
            steps.push_back(*last);
        if (!steps.empty())
            result.push_back({.name = drive.name, .steps = std::move(steps)});
    }
    return result;
}

} // namespace tessarine
