#include "launcherapp/index/walk/IndexWalker.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/index/walk/ListRepair.h"
#include "launcherapp/platform/DirectoryReader.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr double millisPerSecond = 1000;
constexpr int depthBelowRoot = 1;
constexpr std::int64_t mostRoom = 400000; ///< items, as many as the whole index may have

/// The spelling of a directory that opens it even where it is a link.
std::string throughLink(const std::string& path) {
    return path + "/.";
}

std::vector<std::string> normalized(std::span<const std::string> paths) {
    std::vector<std::string> result(paths.size());
    std::ranges::transform(paths, result.begin(), Paths::normalized);
    return result;
}

/// What stands before "/" and a name: nothing for the root of the file system.
std::string_view beforeSlash(std::string_view path) {
    return path == "/" ? std::string_view() : path;
}

/// A directory that is neither an item nor opened.
bool isLeftOut(std::string_view name, const IndexWalker::Policy& policy) {
    return name.ends_with(".noindex") || (policy.skipDirs && policy.skipDirs->contains(name));
}

/// One walk, depth first without recursion: a deep tree must not exhaust a thread's stack.
class Walk {
public:
    Walk(const DirectoryReader& reader,
         const IndexWalker& walker,
         const IndexWalker::Policy& policy,
         const std::string& start)
        : reader_(reader), walker_(walker), policy_(policy), start_(start),
          path_(beforeSlash(start)), remaining_(policy.budget) {}

    /// Ahead of the walk of a whole tree: to grow with the list costs as much as the rest of it.
    void makeRoom() {
        items_.reserve(static_cast<std::size_t>(std::clamp<std::int64_t>(remaining_, 0, mostRoom)));
    }

    IndexWalker::Result run(DirectoryListing listing, int childDepth) {
        push(std::move(listing), childDepth);
        while (!frames_.empty()) {
            auto& frame = frames_.back();
            if (frame.next == frame.listing.size()) {
                frames_.pop_back();
                continue;
            }
            const auto entry = frame.next++;
            const auto name = frame.listing.name(entry);
            const auto kind = kindOf(name, frame.listing.isDirectory(entry), frame.depth);
            if (kind == Kind::none)
                continue;
            if (remaining_ < 1)
                return {.items = std::move(items_), .opened = true, .capped = true};
            add(frame, name, kind);
            if (kind == Kind::file || frame.depth >= policy_.folderDepth)
                continue;
            if (walker_.isAborted(start_))
                return {.aborted = true};
            enter(frame, name);
        }
        return {.items = std::move(items_), .opened = true};
    }

private:
    enum class Kind { none, file, folder };

    struct Frame {
        DirectoryListing listing;
        std::size_t next = 0;
        int depth = 0;                          ///< of its entries
        std::size_t pathLength = 0;             ///< of its directory, in `path_`
        std::optional<std::uint32_t> directory; ///< its number, once it has an item
    };

    Kind kindOf(std::string_view name, bool isDirectory, int depth) const {
        if (isDirectory) {
            if (isLeftOut(name, policy_))
                return Kind::none;
            if (!IndexRules::isPackage(name))
                return Kind::folder;
        }
        return policy_.foldersOnly || depth > policy_.fileDepth ? Kind::none : Kind::file;
    }

    void add(Frame& frame, std::string_view name, Kind kind) {
        if (!frame.directory)
            frame.directory =
                items_.addDirectory(std::string_view(path_).substr(0, frame.pathLength));
        items_.add(*frame.directory, name, Matcher::normalize(name), kind == Kind::folder);
        --remaining_;
    }

    /// Neither `frame` nor `name` may be used afterwards.
    void enter(const Frame& frame, std::string_view name) {
        path_.resize(frame.pathLength);
        path_ += '/';
        path_ += name;
        // One that can't be read stays as an item without children.
        if (auto listing = reader_.list(path_))
            push(std::move(*listing), frame.depth + 1);
    }

    void push(DirectoryListing listing, int depth) {
        frames_.push_back(
            {.listing = std::move(listing), .depth = depth, .pathLength = path_.size()});
    }

    const DirectoryReader& reader_;
    const IndexWalker& walker_;
    const IndexWalker::Policy& policy_;
    const std::string& start_;
    std::string path_; ///< begins with the path of each frame's directory
    std::int64_t remaining_;
    ItemList items_;
    std::vector<Frame> frames_;
};

struct PlacedDirectory {
    std::string path;
    int depth = 0;
};

/// Shortest first, without those that lie below another: one walk of the outer covers both.
std::vector<PlacedDirectory> outermost(std::vector<PlacedDirectory> placed) {
    std::ranges::stable_sort(placed, {}, [](const PlacedDirectory& p) { return p.path.size(); });
    std::set<std::string, std::less<>> kept;
    const auto isCovered = [&kept](const PlacedDirectory& candidate) {
        const std::string_view path = candidate.path;
        for (auto slash = path.find('/', 1); slash != path.npos;
             slash = path.find('/', slash + 1)) {
            if (kept.contains(path.substr(0, slash)))
                return true;
        }
        return !kept.insert(candidate.path).second;
    };
    std::erase_if(placed, isCovered);
    return placed;
}

} // namespace

IndexWalker::IndexWalker(std::shared_ptr<const DirectoryReader> reader,
                         std::function<double()> clock)
    : reader_(std::move(reader)), clock_(std::move(clock)) {}

bool IndexWalker::opens(const std::string& path) const {
    return reader_->list(path).has_value();
}

IndexWalker::Result
IndexWalker::walkTree(const std::string& start, int childDepth, const Policy& policy) const {
    const double began = clock_();
    const auto root = Paths::normalized(start);
    // Any other would be read from wherever the program works, and an empty one as "/".
    if (!root.starts_with('/'))
        return {};
    const WalkAborts::Running running(aborts_, root);
    const bool isWholeTree = childDepth == depthBelowRoot;
    // A folder that the user chose may itself be a link; none below it is ever followed.
    auto listing = reader_->list(isWholeTree ? throughLink(root) : root);
    // A drive that has just left can't be read either, which doesn't mean that it is empty.
    if (!listing)
        return {.aborted = isAborted(root)};
    const bool isPartial = listing->isPartial();
    Walk walk(*reader_, *this, policy, root);
    if (isWholeTree)
        walk.makeRoom();
    auto result = walk.run(std::move(*listing), childDepth);
    if (isWholeTree && result.items.size() < mostRoom / 2)
        result.items.shrink();
    result.partial = result.opened && isPartial;
    result.millis = (clock_() - began) * millisPerSecond;
    return result;
}

IndexWalker::Reconciled IndexWalker::reconcile(const std::string& root,
                                               std::span<const std::string> changed,
                                               const Policy& policy,
                                               const ItemList& items,
                                               std::size_t maxDirs) const {
    const double began = clock_();
    const auto rootPath = Paths::normalized(root);
    std::vector<PlacedDirectory> placed;
    if (changed.size() > maxDirs)
        return {.items = items, .fullWalkNeeded = true};
    for (const auto& given : changed) {
        auto path = Paths::normalized(given);
        if (path == rootPath)
            return {.items = items, .fullWalkNeeded = true};
        if (const auto depth = place(path, rootPath, policy))
            placed.push_back({.path = std::move(path), .depth = *depth});
    }
    const auto kept = outermost(std::move(placed));
    if (kept.empty())
        return {.items = items};

    const WalkAborts::Running running(aborts_, rootPath);
    std::vector<std::string> directories(kept.size());
    std::ranges::transform(kept, directories.begin(), &PlacedDirectory::path);
    ListRepair repair(items, std::move(directories));
    std::size_t walked = 0;
    bool aborted = false;
    for (std::size_t i = 0; i < kept.size() && !aborted; ++i) {
        auto remaining = policy;
        remaining.budget = std::max<std::int64_t>(0, policy.budget - repair.countBeside(i));
        auto walk = walkTree(kept[i].path, kept[i].depth + 1, remaining);
        aborted = walk.aborted;
        if (!isConclusive(walk, kept[i].path, rootPath))
            continue;
        repair.replace(i, std::move(walk.items));
        ++walked;
    }
    auto repaired = repair.finish();
    return {.items = std::move(repaired.items),
            .removed = repaired.removed,
            .added = repaired.added,
            .fullWalkNeeded = walked < kept.size(),
            .dirsWalked = walked,
            .dirsUnread = kept.size() - walked,
            .millis = (clock_() - began) * millisPerSecond};
}

/// Whether a walk of a changed directory tells all there is below it now.
bool IndexWalker::isConclusive(const Result& walk,
                               const std::string& directory,
                               const std::string& root) const {
    if (walk.opened)
        return !walk.partial;
    // One that went together with its root is no news: a root that can't be opened keeps its list.
    return !walk.aborted && reader_->isGone(directory) && !reader_->isGone(throughLink(root));
}

std::optional<int>
IndexWalker::place(const std::string& given, const std::string& root, const Policy& policy) const {
    const auto path = Paths::normalized(given);
    const auto begin = beforeSlash(root).size() + 1;
    if (path.size() <= begin || !Paths::isAtOrBelow(path, root))
        return std::nullopt;
    std::vector<std::string> above; // each directory from the root's child down to `path`
    for (auto from = begin; from <= path.size();) {
        const auto end = std::min(path.find('/', from), path.size());
        const auto component = std::string_view(path).substr(from, end - from);
        if (component.starts_with('.') || isLeftOut(component, policy) ||
            IndexRules::isPackage(component))
            return std::nullopt;
        above.push_back(path.substr(0, end));
        from = end + 1;
    }
    const auto depth = static_cast<int>(above.size());
    if (std::max(policy.folderDepth, policy.fileDepth) <= depth)
        return std::nullopt;
    // Asked last, since only this asks the disk. A walk would never come through a link.
    const bool throughLink =
        std::ranges::any_of(above, [this](const auto& part) { return reader_->isLink(part); });
    return throughLink ? std::nullopt : std::optional(depth);
}

void IndexWalker::abort(const std::string& path) {
    aborts_.add(Paths::normalized(path));
}

void IndexWalker::readmit(std::span<const std::string> paths) {
    aborts_.readmit(normalized(paths));
}

void IndexWalker::readmitWhenIdle(std::span<const std::string> paths) {
    aborts_.readmitWhenIdle(normalized(paths));
}

bool IndexWalker::isAborted(std::string_view start) const {
    return aborts_.contains(start);
}

} // namespace tessarine
