#pragma once

#include <QDBusMessage>
#include <QString>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// What UDisks2 tells of the machine's drives. Values and pure functions; any thread.
namespace tessarine::UDisksTree {

/// A drive: the thing that is plugged in, or that takes a medium.
struct Drive {
    QString path;
    std::string name;            ///< "SanDisk Ultra"
    bool isExternal = false;     ///< it, or its medium, can be taken away
    bool hasMedium = true;       ///< an empty card reader has none
    bool staysPluggedIn = false; ///< only its medium leaves: a card, a disc
    bool canEject = false;
    bool canPowerOff = false;
    std::string sibling; ///< the same for all drives of one device; empty when it has but one
};

/// A block device: a disk, a partition, what an encrypted one holds, or a disk image.
struct Block {
    QString path;
    QString drive;                   ///< empty for none
    QString below;                   ///< the encrypted device, or the table, that it lies in
    std::string device;              ///< the kernel's name for it: "sdb1", "dm-0"
    std::string name;                ///< its label, or its device
    std::string fileSystemID;        ///< of one that may lie on several blocks; empty for others
    std::vector<std::string> mounts; ///< where it is mounted
    bool isSystem = false;           ///< UDisks takes it to be the machine's own
    bool isPartOfMore = false;       ///< in a volume group or an array, whose use isn't told here
    bool isSwap = false;             ///< the system's memory lies there now
    bool isUnlocked = false;         ///< encrypted, and open
    std::optional<uid_t> imageUser;  ///< who set up the disk image, for one
};

struct Tree {
    std::vector<Drive> drives;
    std::vector<Block> blocks;
};

/// Of the answer to GetManagedObjects; nothing when it has another shape.
std::optional<Tree> read(const QDBusMessage& answer);

} // namespace tessarine::UDisksTree
