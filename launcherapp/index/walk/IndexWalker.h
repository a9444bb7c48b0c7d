#pragma once

#include "LauncherCore/index/ItemList.h"
#include "launcherapp/index/walk/WalkAborts.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace tessarine {

class DirectoryReader;

/// Reads directory trees for the file index: whole ones, and what changed of them. It never
/// follows a symbolic link, never reports a name that begins with a full stop, and never opens a
/// package. A name is taken as bytes, whatever they are. Any thread; several walks may run at
/// once, and share only the set of paths that are being left.
class IndexWalker {
public:
    /// What one walk may do. Depth counts from the root: its direct children have depth 1.
    struct Policy {
        bool foldersOnly = false; ///< neither files nor packages
        int folderDepth = 0; ///< folders are opened while their depth is below this; one at exactly
                             ///< this depth is an item, but not opened
        int fileDepth = 0;   ///< files and packages are items at a depth not above this
        const std::set<std::string, std::less<>>* skipDirs =
            nullptr;             ///< names never reported nor opened; null for none
        std::int64_t budget = 0; ///< most items
    };

    struct Result {
        ItemList items;       ///< in the order of the walk, with their digest
        bool opened = false;  ///< the start could be read, and the walk was not aborted
        bool partial = false; ///< reading the start broke off: it may hold more than `items`
        bool aborted = false; ///< the walk was ended since its drive is leaving; then not `opened`
        bool capped = false;  ///< the budget stopped the walk
        double millis = 0;
    };

    struct Reconciled {
        ItemList items; ///< the list as far as it was repaired, with its digest
        std::size_t removed = 0;
        std::size_t added = 0;
        bool fullWalkNeeded = false;
        std::size_t dirsWalked = 0;
        std::size_t dirsUnread = 0; ///< there, but not to be read just now: they keep their items
        double millis = 0;
    };

    /// `clock` gives seconds since some fixed moment, for `millis`; any thread. The reader is
    /// shared, since a walk of a drive that hangs may outlive everything else.
    IndexWalker(std::shared_ptr<const DirectoryReader> reader, std::function<double()> clock);

    /// Whether the directory can be read at all; waits for it.
    bool opens(const std::string& path) const;

    /// Walks below `start`, depth first, each directory's entries by name. `childDepth` is the
    /// depth of its direct children: 1 for a root, one more than its own for a changed directory.
    /// A start that is no absolute path is not opened.
    Result walkTree(const std::string& start, int childDepth, const Policy& policy) const;

    /// Repairs a root's list after `changed` directories, so that it holds exactly what a fresh
    /// walk would find. The order stays, with what is new at the end. Asks for a full walk when
    /// the root itself is named or there are more than `maxDirs`, with nothing repaired, and when
    /// a directory could not be read though it isn't gone, or the walk was aborted.
    Reconciled reconcile(const std::string& root,
                         std::span<const std::string> changed,
                         const Policy& policy,
                         const ItemList& items,
                         std::size_t maxDirs) const;

    /// The depth of a directory below `root`, if a walk under this policy would look into it;
    /// nothing otherwise, and when a component of the path is a symbolic link.
    std::optional<int>
    place(const std::string& path, const std::string& root, const Policy& policy) const;

    /// Ends the walks at or below `path` before their next directory, also those that begin until
    /// it is readmitted.
    void abort(const std::string& path);

    /// The paths are no longer being left.
    void readmit(std::span<const std::string> paths);

    /// The paths have been left: each is readmitted once no walk at or below it is under way.
    void readmitWhenIdle(std::span<const std::string> paths);

    bool isAborted(std::string_view start) const;

private:
    bool
    isConclusive(const Result& walk, const std::string& directory, const std::string& root) const;

    const std::shared_ptr<const DirectoryReader> reader_;
    std::function<double()> clock_;
    mutable WalkAborts aborts_;
};

} // namespace tessarine
