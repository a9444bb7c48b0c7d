#include "launcherapp/index/IndexRoots.h"

#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/Paths.h"

#include <algorithm>

namespace tessarine {

namespace {

constexpr double holdFactor = 12; // a duty of at most 1/13, some 7.7 %
constexpr double shortestHold = 30;

} // namespace

const std::set<std::string, std::less<>>& IndexRoots::skipDirs() {
    static const std::set<std::string, std::less<>> names{"node_modules",
                                                          ".build",
                                                          "build",
                                                          "dist",
                                                          "DerivedData",
                                                          "Pods",
                                                          "__pycache__",
                                                          ".git",
                                                          ".venv",
                                                          "venv",
                                                          ".cache",
                                                          "Caches",
                                                          "Library",
                                                          ".Trash",
                                                          "target",
                                                          ".next",
                                                          ".swiftpm"};
    return names;
}

IndexRoots::Kind IndexRoots::kindOf(const std::string& root,
                                    const std::map<std::string, std::string>& drives,
                                    std::span<const std::string> foldersOnlyRoots) {
    if (drives.contains(root))
        return Kind::drive;
    const bool foldersOnly = std::ranges::any_of(
        foldersOnlyRoots, [&](const std::string& each) { return Paths::normalized(each) == root; });
    return foldersOnly ? Kind::foldersOnly : Kind::searchFolder;
}

IndexWalker::Policy IndexRoots::policy(Kind kind, std::int64_t budget) {
    IndexWalker::Policy policy{.skipDirs = &skipDirs(),
                               .budget = std::max<std::int64_t>(0, budget)};
    switch (kind) {
    case Kind::searchFolder:
        policy.folderDepth = 6;
        policy.fileDepth = 4;
        break;
    case Kind::foldersOnly:
        policy.foldersOnly = true;
        policy.folderDepth = 5;
        policy.fileDepth = 4;
        break;
    case Kind::drive:
        policy.folderDepth = 8;
        policy.fileDepth = 2;
        break;
    }
    return policy;
}

std::vector<std::string> IndexRoots::joined(std::vector<std::string> first,
                                            std::span<const std::string> drives) {
    for (const auto& drive : drives) {
        const bool isListed = std::ranges::any_of(
            first, [&](const std::string& root) { return Paths::isAtOrBelow(drive, root); });
        if (!isListed)
            first.push_back(drive);
    }
    return first;
}

std::optional<std::string> IndexRoots::rootOf(std::string_view path,
                                              std::span<const std::string> roots) {
    const std::string* longest = nullptr;
    std::size_t longestLength = 0;
    for (const auto& root : roots) {
        if (root.empty() || !Paths::isAtOrBelow(path, root))
            continue;
        const auto length = Graphemes::count(root);
        if (!longest || length > longestLength) {
            longest = &root;
            longestLength = length;
        }
    }
    return longest ? std::optional(*longest) : std::nullopt;
}

IndexRoots::Split IndexRoots::splitFirstDriveWalks(std::span<const std::string> full,
                                                   const std::map<std::string, std::string>& drives,
                                                   const std::set<std::string>& walked) {
    Split split;
    for (const auto& root : full) {
        const bool firstOfDrive = drives.contains(root) && !walked.contains(root);
        (firstOfDrive ? split.onTheirOwn : split.shared).push_back(root);
    }
    return split;
}

std::vector<std::string> IndexRoots::openedDirectories(const std::string& root,
                                                       const ItemList& items,
                                                       const IndexWalker::Policy& policy) {
    const auto start = Paths::normalized(root);
    const auto slashes =
        start == "/" ? 0 : static_cast<std::size_t>(std::ranges::count(start, '/'));
    std::vector<std::string> directories{start};
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!items.isFolder(i) || items.isItself(i))
            continue;
        const auto depth = static_cast<int>(items.slashes(i) - slashes);
        if (depth < policy.folderDepth)
            directories.push_back(items.id(i));
    }
    return directories;
}

double IndexRoots::holdSeconds(double walkSeconds) {
    return std::max(walkSeconds * holdFactor, shortestHold);
}

} // namespace tessarine
