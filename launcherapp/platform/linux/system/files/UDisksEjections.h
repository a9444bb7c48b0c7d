#pragma once

#include "launcherapp/platform/linux/system/files/UDisksTree.h"

#include <QString>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// What is to be done so that drives and images can be taken away. Whatever the running system
/// uses, or may use, stays; when in doubt it stays and that is told. Values and pure functions; any
/// thread.
namespace tessarine::UDisksEjections {

/// What UDisks doesn't tell of the machine.
struct Machine {
    uid_t user; ///< whose images may go

    /// Folders that the session works in, absolute and without links.
    std::vector<std::string> ownFolders;

    /// By the kernel's name of a block device: the names of those that are made from it, as a
    /// mapped volume is. Nothing, or no entry, where that can't be told.
    std::map<std::string, std::optional<std::vector<std::string>>> holders;
};

/// One call to UDisks2, on an object of its.
struct Step {
    QString path;
    const char* interface;
    const char* method;
};

/// Steps for one thing, in order; one that fails ends them.
struct Part {
    std::string name;
    std::vector<Step> steps;
};

/// What loses its power together: the drives of one device, or one image.
struct Ejection {
    std::vector<Part> release; ///< each, whatever becomes of the others
    std::vector<Part> leave;   ///< once all are released, and never before
};

struct Plan {
    std::vector<Ejection> ejections;
    std::vector<std::string> stays; ///< sentences: what doesn't go, or not as far as it could
};

/// For every external drive and every image that this user set up.
Plan plan(const UDisksTree::Tree& tree, const Machine& machine);

} // namespace tessarine::UDisksEjections
