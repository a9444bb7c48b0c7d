#include "launcherapp/index/IndexRebuild.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/index/IndexRoots.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>

namespace tessarine {

namespace {

using IndexRebuild::Input;
using IndexRebuild::largestBatch;
using IndexRebuild::Output;

/// The last part of a path, as a root is called in the log.
std::string nameOf(const std::string& root) {
    const auto name = Paths::lastPart(Paths::withoutEndSlashes(root));
    return name.empty() ? root : std::string(name);
}

/// How many ids only one of the two lists has, told by their hashes: the ids themselves would take
/// more memory than the whole index.
std::size_t differingIDs(const ItemList& left, const ItemList& right) {
    const auto sortedHashes = [](const ItemList& items) {
        std::vector<std::uint64_t> hashes;
        hashes.reserve(items.size());
        std::string id;
        for (std::size_t i = 0; i < items.size(); ++i) {
            items.assignID(i, id);
            hashes.push_back(IndexRules::fnv1a(id));
        }
        std::ranges::sort(hashes);
        return hashes;
    };
    std::vector<std::uint64_t> differing;
    std::ranges::set_symmetric_difference(
        sortedHashes(left), sortedHashes(right), std::back_inserter(differing));
    return differing.size();
}

/// One run over copies of what the index knew.
class Run {
public:
    Run(const Input& input, const IndexWalker& walker) : input_(input), walker_(walker) {
        for (const auto& [root, items] : input.perRoot) {
            const bool isRoot = std::ranges::count(input.roots, root) > 0;
            if (isRoot && std::ranges::count(input.shared, root) == 0)
                total_ += items->size();
        }
    }

    Output take() {
        for (const auto& root : input_.shared) {
            walk(root);
            if (output_.capped)
                break;
        }
        for (const auto& [root, directories] : input_.deltaJobs)
            repair(root, directories);
        std::vector<SharedItems> lists;
        for (const auto& root : input_.roots) {
            if (auto items = itemsOf(root))
                lists.push_back(std::move(items));
        }
        output_.index = std::make_shared<const NameIndex>(std::move(lists));
        output_.report = fmt::format("{}", fmt::join(reports_, "; "));
        return std::move(output_);
    }

private:
    IndexWalker::Policy policyOf(const std::string& root, std::size_t held) const {
        return IndexRoots::policy(IndexRoots::kindOf(root, {}, input_.foldersOnly),
                                  IndexRoots::totalCap - static_cast<std::int64_t>(held));
    }

    SharedItems known(const std::string& root) const {
        const auto found = input_.perRoot.find(root);
        return found == input_.perRoot.end() ? nullptr : found->second;
    }

    SharedItems itemsOf(const std::string& root) const {
        const auto fresh = output_.fresh.find(root);
        return fresh == output_.fresh.end() ? known(root) : fresh->second;
    }

    void cover(const std::string& root, const ItemList& items, const IndexWalker::Policy& policy) {
        output_.coverage.push_back(
            {.root = root, .directories = IndexRoots::openedDirectories(root, items, policy)});
    }

    void walk(const std::string& root) {
        const auto policy = policyOf(root, total_);
        auto result = walker_.walkTree(root, 1, policy);
        const auto before = known(root);
        const auto held = before ? before->size() : 0;
        // A part of the files must not pass for all of them; it is better than none, though.
        const bool isWorse = result.partial && held > 0;
        if (!result.opened || isWorse) {
            reports_.push_back(fmt::format("{}: {}; kept {}",
                                           nameOf(root),
                                           isWorse ? "reading it broke off" : "could not open",
                                           held));
            total_ += held;
            return;
        }
        result.items.shrink();
        const auto items = std::make_shared<const ItemList>(std::move(result.items));
        output_.fresh[root] = items;
        output_.walked.push_back(root);
        cover(root, *items, policy);
        total_ += items->size();
        auto report =
            fmt::format("{}: {} in {:.0f} ms", nameOf(root), items->size(), result.millis);
        if (before && before->digest() != items->digest())
            report +=
                fmt::format(" (periodic full walk: {} item(s) differ from the delta-maintained "
                            "set, which on a live tree is ordinary change as much as "
                            "anything missed; replaced either way)",
                            differingIDs(*before, *items));
        reports_.push_back(std::move(report));
        if (result.capped) {
            output_.capped = true;
            reports_.push_back(fmt::format(
                "CAP {} reached in {}; later roots skipped", IndexRoots::totalCap, nameOf(root)));
        }
    }

    void repair(const std::string& root, const std::vector<std::string>& directories) {
        const auto before = known(root);
        if (!before)
            return;
        const auto policy = policyOf(root, total_ - std::min(total_, before->size()));
        auto result = walker_.reconcile(root, directories, policy, *before, largestBatch);
        if (result.fullWalkNeeded) {
            output_.marked.push_back(root);
            const auto reason =
                result.dirsUnread > 0
                    ? fmt::format("{} dir(s) could not be read and keep what they held",
                                  result.dirsUnread)
                    : fmt::format("{} dir(s) named the root or exceeded the batch cap",
                                  directories.size());
            reports_.push_back(fmt::format("{}: {}; full walk next", nameOf(root), reason));
            if (result.dirsWalked == 0)
                return;
        }
        reports_.push_back(fmt::format("{}: delta +{} -{} over {} dir(s) in {:.0f} ms",
                                       nameOf(root),
                                       result.added,
                                       result.removed,
                                       result.dirsWalked,
                                       result.millis));
        // Also what looks the same is told to the watcher: a directory may have taken another's
        // place.
        if (result.added == 0 && result.removed == 0) {
            cover(root, *before, policy);
            output_.fresh[root] = before;
            return;
        }
        total_ += result.items.size();
        total_ -= std::min(total_, before->size());
        result.items.shrink();
        auto items = std::make_shared<const ItemList>(std::move(result.items));
        cover(root, *items, policy);
        output_.fresh[root] = std::move(items);
    }

    const Input& input_;
    const IndexWalker& walker_;
    std::size_t total_ = 0; ///< items of the roots that are not walked, or have been
    std::vector<std::string> reports_;
    Output output_;
};

} // namespace

IndexRebuild::Output IndexRebuild::run(const Input& input,
                                       const IndexWalker& walker,
                                       const std::function<double()>& clock) {
    const double started = clock();
    auto output = Run(input, walker).take();
    output.millis = (clock() - started) * 1000;
    output.startedAt = input.now;
    return output;
}

SharedItems IndexRebuild::withDriveItself(const std::string& path,
                                          const std::string& name,
                                          const ItemList& items) {
    ItemList list;
    list.addItself(path, name, Matcher::normalize(name), true);
    for (std::size_t i = 0; i < items.size(); ++i)
        list.addFrom(items, i);
    list.shrink();
    return std::make_shared<const ItemList>(std::move(list));
}

IndexRebuild::DriveCounts IndexRebuild::driveCounts(const ItemList& items) {
    DriveCounts counts;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items.isItself(i))
            continue;
        ++(items.isFolder(i) ? counts.folders : counts.files);
    }
    return counts;
}

} // namespace tessarine
