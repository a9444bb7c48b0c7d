#pragma once

#include <QDBusMessage>
#include <QString>
#include <optional>
#include <string>
#include <vector>

/// What UDisks2 tells of the machine's drives, and what is to be done with them. Values and pure
/// functions; any thread.
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

    bool operator==(const Drive&) const = default;
};

/// A block device: a disk, a partition, what an encrypted one holds, or a disk image.
struct Block {
    QString path;
    QString drive;                     ///< empty for none
    QString below;                     ///< the encrypted device, or the table, that it lies in
    std::string name;                  ///< its label, or its device
    std::vector<std::string> mounts;   ///< where it is mounted
    bool isSystem = false;             ///< UDisks takes it to be the machine's own
    bool isPartOfMore = false;         ///< in a volume group or an array, whose use isn't told here
    bool isSwap = false;               ///< the system's memory lies there now
    bool isUnlocked = false;           ///< encrypted, and open
    std::optional<unsigned> imageUser; ///< who set up the disk image, for one

    bool operator==(const Block&) const = default;
};

struct Tree {
    std::vector<Drive> drives;
    std::vector<Block> blocks;

    bool operator==(const Tree&) const = default;
};

/// Of the answer to GetManagedObjects; nothing when it has another shape.
std::optional<Tree> read(const QDBusMessage& answer);

/// One call to UDisks2, on an object of its.
struct Step {
    QString path;
    const char* interface;
    const char* method;

    bool operator==(const Step&) const = default;
};

/// What makes one drive safe to take away, in order.
struct Ejection {
    std::string name;
    std::vector<Step> steps;
};

/// For every external drive and every image that this user set up. Never for one that holds
/// anything of the running system, or may.
std::vector<Ejection> ejections(const Tree& tree, unsigned user);

} // namespace tessarine::UDisksTree
