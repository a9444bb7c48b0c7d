#include "launcherapp/index/proof/WalkerDiff.h"

#include "launcherapp/index/walk/LegacyWalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace tessarine {

namespace {

constexpr std::string_view prefix = "walker-diff: ";
constexpr std::size_t mostPathsShown = 20; ///< of each kind and root

/// Paths, sorted, a folder's with "/" at its end so that a change of kind shows.
using Paths = std::vector<std::string>;

std::string shown(std::string id, bool isFolder) {
    if (isFolder)
        id += '/';
    return id;
}

Paths pathsOf(const ItemList& items) {
    Paths paths;
    paths.reserve(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        paths.push_back(shown(items.id(i), items.isFolder(i)));
    std::ranges::sort(paths);
    return paths;
}

Paths pathsOf(const std::vector<IndexedItem>& items) {
    Paths paths;
    paths.reserve(items.size());
    for (const auto& item : items)
        paths.push_back(shown(item.id, item.isFolder));
    std::ranges::sort(paths);
    return paths;
}

Paths without(const Paths& paths, const Paths& others) {
    Paths rest;
    std::ranges::set_difference(paths, others, std::back_inserter(rest));
    return rest;
}

/// The paths that both walks have as the same kind, with other fields.
Paths differingFields(const ItemList& items, const std::vector<IndexedItem>& legacy) {
    std::unordered_map<std::string_view, const IndexedItem*> byID;
    byID.reserve(legacy.size());
    for (const auto& item : legacy)
        byID.emplace(item.id, &item);
    Paths paths;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto item = items.item(i);
        const auto other = byID.find(item.id);
        if (other != byID.end() && other->second->isFolder == item.isFolder &&
            *other->second != item)
            paths.push_back(shown(item.id, item.isFolder));
    }
    return paths;
}

struct Totals {
    std::size_t roots = 0; ///< that were compared
    std::size_t items = 0;
    std::size_t churn = 0;
    std::size_t onlyNew = 0;
    std::size_t onlyLegacy = 0;
    std::size_t otherFields = 0;
};

class Diff {
public:
    Diff(const IndexWalker& walker, const std::function<double()>& clock)
        : walker_(walker), clock_(clock) {}

    /// The roots share a budget: each gets what those before it left.
    void compare(WalkerDiffRoot root) {
        root.policy.budget -= static_cast<std::int64_t>(totals_.items);
        if (root.policy.budget < 1) {
            skip(root.path, "those before it have filled the index");
            return;
        }
        const auto first = walker_.walkTree(root.path, 1, root.policy);
        const double began = clock_();
        const auto legacy = legacyWalk(root.path, root.policy);
        const double legacyMillis = (clock_() - began) * 1000;
        const auto again = walker_.walkTree(root.path, 1, root.policy);
        if (first.opened != again.opened)
            skip(root.path, "it could be opened only once");
        else if (!first.opened && !legacy)
            skip(root.path, "it could not be opened");
        else
            compare(root.path, first, {legacy.value_or(Items()), legacyMillis}, again);
    }

    SelftestResult result() {
        using Verdict = SelftestResult::Verdict;
        const bool agree =
            totals_.onlyNew == 0 && totals_.onlyLegacy == 0 && totals_.otherFields == 0;
        say(fmt::format("{}{} roots, {} items; tree churn between walks {}; only-new {}; "
                        "only-legacy {}",
                        prefix,
                        totals_.roots,
                        totals_.items,
                        totals_.churn,
                        totals_.onlyNew,
                        totals_.onlyLegacy));
        if (totals_.roots == 0)
            say(fmt::format("{}NOT MEASURED, no root was compared", prefix));
        return {.verdict = !agree               ? Verdict::refuted
                           : totals_.roots == 0 ? Verdict::notMeasured
                                                : Verdict::proved,
                .report = report_};
    }

private:
    using Items = std::vector<IndexedItem>;

    struct Legacy {
        Items items;
        double millis = 0;
    };

    void compare(const std::string& root,
                 const IndexWalker::Result& first,
                 const Legacy& legacy,
                 const IndexWalker::Result& again) {
        const auto before = pathsOf(first.items);
        const auto between = pathsOf(legacy.items);
        const auto after = pathsOf(again.items);
        const auto vanished = without(before, after);
        const auto churn = vanished.size() + without(after, before).size();
        const auto onlyNew = without(without(before, vanished), between);
        const auto onlyLegacy = without(without(between, before), after);
        const auto otherFields = differingFields(first.items, legacy.items);
        say(fmt::format("{}: new {} items in {:.0f} ms (again: {:.0f} ms); legacy {} items in "
                        "{:.0f} ms; tree churn between walks {}; only-new {}; only-legacy {}",
                        root,
                        before.size(),
                        first.millis,
                        again.millis,
                        between.size(),
                        legacy.millis,
                        churn,
                        onlyNew.size(),
                        onlyLegacy.size()));
        list("only-new", onlyNew);
        list("only-legacy", onlyLegacy);
        list("other fields of", otherFields);
        ++totals_.roots;
        totals_.items += before.size();
        totals_.churn += churn;
        totals_.onlyNew += onlyNew.size();
        totals_.onlyLegacy += onlyLegacy.size();
        totals_.otherFields += otherFields.size();
    }

    void skip(const std::string& root, std::string_view reason) {
        say(fmt::format("{}{}: NOT MEASURED, {}", prefix, root, reason));
    }

    void say(const std::string& line) {
        if (!report_.empty())
            report_ += '\n';
        report_ += line;
    }

    void list(std::string_view kind, const Paths& paths) {
        for (std::size_t i = 0; i < std::min(paths.size(), mostPathsShown); ++i)
            say(fmt::format("{}{} {}", prefix, kind, paths[i]));
        if (paths.size() > mostPathsShown)
            say(fmt::format("{}{} and {} more", prefix, kind, paths.size() - mostPathsShown));
    }

    const IndexWalker& walker_;
    const std::function<double()>& clock_;
    Totals totals_;
    std::string report_;
};

} // namespace

SelftestResult walkerDiff(const IndexWalker& walker,
                          std::span<const WalkerDiffRoot> roots,
                          const std::function<double()>& clock) {
    Diff diff(walker, clock);
    for (const auto& root : roots)
        diff.compare(root);
    return diff.result();
}

} // namespace tessarine
