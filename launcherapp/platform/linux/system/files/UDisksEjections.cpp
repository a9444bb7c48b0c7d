#include "launcherapp/platform/linux/system/files/UDisksEjections.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

using UDisksEjections::Ejection;
using UDisksEjections::Machine;
using UDisksEjections::Part;
using UDisksEjections::Plan;
using UDisksEjections::Step;
using UDisksTree::Block;
using UDisksTree::Drive;
using UDisksTree::Tree;
using Blocks = std::vector<const Block*>;

/// Folders that the running system itself may be on; "/home" and its like too, since nobody can
/// work on without them. Live systems run from the stick that they were started from.
constexpr auto systemFolders = std::to_array<std::string_view>({
    "/boot",     "/bin",  "/cdrom", "/efi",     "/etc",  "/gnu",  "/home",        "/isodevice",
    "/lib",      "/nix",  "/opt",   "/ostree",  "/rofs", "/root", "/run/archiso", "/run/initramfs",
    "/run/live", "/sbin", "/srv",   "/sysroot", "/usr",  "/var",
});

/// Images that this user set up are the system's own.
constexpr uid_t systemUser = 0;

bool holds(std::string_view mount, std::string_view folder) {
    return folder.starts_with(mount) &&
           (folder.size() == mount.size() || folder[mount.size()] == '/');
}

bool isSystemFolder(std::string_view mount) {
    return mount == "/" || std::ranges::any_of(systemFolders, [mount](std::string_view folder) {
               if (!holds(folder, mount))
                   return false;
               const auto below = mount.substr(folder.size());
               // Anybody's home may be in use. Below it, people mount drives of their own.
               if (folder == "/home" || folder == "/root")
                   return std::ranges::count(below, '/') <= (folder == "/home" ? 1 : 0);
               return true;
           });
}

bool any(const Blocks& blocks, const auto& isSo) {
    return std::ranges::any_of(blocks, [&](const Block* block) { return isSo(*block); });
}

/// More than a disk, a partition, LUKS and a volume lie in one another: a circle ends there.
constexpr int deepest = 8;

/// The blocks that lie on one drive or image, those inside others behind them.
class Nesting {
public:
    explicit Nesting(const Tree& tree) : tree_(tree) {}

    Blocks onDrive(const QString& drive) const {
        return where([&](const Block& block) { return outermost(block)->drive == drive; });
    }

    Blocks inImage(const QString& image) const {
        return where([&](const Block& block) { return outermost(block)->path == image; });
    }

    Blocks where(const auto& isSo) const {
        Blocks found;
        for (const auto& block : tree_.blocks) {
            if (isSo(block))
                found.push_back(&block);
        }
        return found;
    }

private:
    const Block* outermost(const Block& block) const {
        const auto* outer = &block;
        for (int depth = 0; depth < deepest && !outer->below.isEmpty(); ++depth) {
            const auto found = std::ranges::find(tree_.blocks, outer->below, &Block::path);
            if (found == tree_.blocks.end())
                break;
            outer = &*found;
        }
        return outer;
    }

    const Tree& tree_;
};

constexpr auto filesystem = "org.freedesktop.UDisks2.Filesystem";
constexpr auto encrypted = "org.freedesktop.UDisks2.Encrypted";
constexpr auto driveInterface = "org.freedesktop.UDisks2.Drive";
constexpr auto loop = "org.freedesktop.UDisks2.Loop";

/// First every file system, then every lock, as one may lie in the other.
std::vector<Step> releaseSteps(const Blocks& blocks) {
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

class Planning {
public:
    Planning(const Tree& tree, const Machine& machine)
        : tree_(tree), machine_(machine), nesting_(tree) {}

    Plan plan() {
        // Images first: their files may lie on the drives.
        for (const auto& image : tree_.blocks) {
            if (image.imageUser == machine_.user && machine_.user != systemUser)
                addImage(image);
        }
        for (auto each = tree_.drives.begin(); each != tree_.drives.end(); ++each) {
            const auto isSibling = [&](const Drive& drive) {
                return &drive == &*each ||
                       (!drive.sibling.empty() && drive.sibling == each->sibling);
            };
            if (std::any_of(tree_.drives.begin(), each, isSibling))
                continue; // went along with that one
            std::vector<const Drive*> device;
            for (const auto& drive : tree_.drives) {
                if (isSibling(drive))
                    device.push_back(&drive);
            }
            addDevice(device);
        }
        return std::move(plan_);
    }

private:
    void addImage(const Block& image) {
        const auto blocks = nesting_.inImage(image.path);
        if (isSystems(blocks) || isDoubtful(image.name, blocks))
            return;
        plan_.ejections.push_back(
            {.release = {{.name = image.name, .steps = releaseSteps(blocks)}},
             .leave = {{.name = image.name, .steps = {{image.path, loop, "Delete"}}}}});
    }

    void addDevice(const std::vector<const Drive*>& device) {
        Ejection ejection;
        std::vector<const Drive*> going;
        bool isKept = false;
        for (const auto* drive : device) {
            const auto blocks = nesting_.onDrive(drive->path);
            if (!drive->isExternal || isSystems(blocks) || isToldSystems(*drive, blocks)) {
                isKept = true;
            } else if (drive->hasMedium) {
                if (isDoubtful(drive->name, blocks)) {
                    isKept = true;
                    continue;
                }
                going.push_back(drive);
                ejection.release.push_back({.name = drive->name, .steps = releaseSteps(blocks)});
            }
        }
        if (!isKept)
            ejection.leave = leaving(device, going);
        else
            noteThatTheyStayOn(ejection);
        const auto isNothing = [](const Part& part) { return part.steps.empty(); };
        if (!std::ranges::all_of(ejection.release, isNothing) || !ejection.leave.empty())
            plan_.ejections.push_back(std::move(ejection));
    }

    /// A whole stick or disk loses its power, which also writes what the drive itself holds back,
    /// and takes the other drives of the device along. A reader stays, as it could not be used
    /// again until it is plugged in anew.
    static std::vector<Part> leaving(const std::vector<const Drive*>& device,
                                     const std::vector<const Drive*>& going) {
        if (going.empty())
            return {};
        if (std::ranges::all_of(device, [](const Drive* drive) {
                return drive->canPowerOff && !drive->staysPluggedIn;
            })) {
            std::vector<std::string> names;
            for (const auto* drive : going)
                names.push_back(drive->name);
            return {{.name = fmt::format("{}", fmt::join(names, "”, “")),
                     .steps = {{going.front()->path, driveInterface, "PowerOff"}}}};
        }
        std::vector<Part> parts;
        for (const auto* drive : going) {
            if (drive->canEject)
                parts.push_back(
                    {.name = drive->name, .steps = {{drive->path, driveInterface, "Eject"}}});
        }
        return parts;
    }

    void noteThatTheyStayOn(const Ejection& ejection) {
        for (const auto& part : ejection.release)
            plan_.stays.push_back(fmt::format("“{}” is unmounted but stays on, since it shares "
                                              "its device with a drive that may be in use",
                                              part.name));
    }

    /// Not by what UDisks itself takes for the system's: that is every image, and all that is
    /// unlocked.
    bool isSystems(const Blocks& blocks) const {
        return any(blocks, [&](const Block& block) {
            return block.isSwap || std::ranges::any_of(block.mounts, [&](const auto& mount) {
                       return isSystemFolder(mount) ||
                              std::ranges::any_of(machine_.ownFolders, [&](const auto& folder) {
                                  return holds(mount, folder);
                              });
                   });
        });
    }

    static bool isToldSystems(const Drive& drive, const Blocks& blocks) {
        return any(blocks,
                   [&](const Block& block) { return block.isSystem && block.drive == drive.path; });
    }

    /// Whether the running system may use it in a way that doesn't show, which is then told.
    bool isDoubtful(const std::string& name, const Blocks& blocks) {
        const auto why = doubt(blocks);
        if (why)
            plan_.stays.push_back(fmt::format("“{}” was left alone, as {}", name, *why));
        return why.has_value();
    }

    std::optional<std::string> doubt(const Blocks& blocks) const {
        if (any(blocks, [](const Block& block) { return block.isPartOfMore; }))
            return "it is a part of a volume group or an array";
        if (any(blocks,
                [&](const Block& block) { return isPartOfMountedFileSystem(block, blocks); }))
            return "it is a part of a file system that is in use";
        for (const auto* block : blocks) {
            const auto found = machine_.holders.find(block->device);
            if (found == machine_.holders.end() || !found->second)
                return "it can't be told what uses it";
            for (const auto& holder : *found->second) {
                if (!any(blocks, [&](const Block& each) { return each.device == holder; }))
                    return fmt::format("{} uses it", holder);
            }
        }
        return std::nullopt;
    }

    /// That lies on other drives too: UDisks tells a mount of one of its blocks alone.
    bool isPartOfMountedFileSystem(const Block& block, const Blocks& sameDrive) const {
        if (block.fileSystemID.empty())
            return false;
        const auto members = nesting_.where(
            [&](const Block& each) { return each.fileSystemID == block.fileSystemID; });
        return any(members, [](const Block& each) { return !each.mounts.empty(); }) &&
               any(members,
                   [&](const Block& each) { return std::ranges::count(sameDrive, &each) == 0; });
    }

    const Tree& tree_;
    const Machine& machine_;
    Nesting nesting_;
    Plan plan_;
};

} // namespace

Plan UDisksEjections::plan(const Tree& tree, const Machine& machine) {
    return Planning(tree, machine).plan();
}

} // namespace tessarine
