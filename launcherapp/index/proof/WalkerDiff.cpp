#include "launcherapp/index/proof/WalkerDiff.h"

#include "launcherapp/index/walk/LegacyWalk.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
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

struct Totals {
    std::size_t items = 0;
    std::size_t churn = 0;
    std::size_t onlyNew = 0;
    std::size_t onlyLegacy = 0;
};

class Diff {
public:
    Diff(const IndexWalker& walker, const std::function<double()>& clock)
        : walker_(walker), clock_(clock) {}

    void compare(const WalkerDiffRoot& root) {
        const auto first = walker_.walkTree(root.path, 1, root.policy);
        const double began = clock_();
        const auto legacy = legacyWalk(root.path, root.policy);
        const double legacyMillis = (clock_() - began) * 1000;
        const auto again = walker_.walkTree(root.path, 1, root.policy);

        const auto before = pathsOf(first.items);
        const auto between = pathsOf(legacy);
        const auto after = pathsOf(again.items);
        const auto vanished = without(before, after);
        const auto churn = vanished.size() + without(after, before).size();
        const auto onlyNew = without(without(before, vanished), between);
        const auto onlyLegacy = without(without(between, before), after);
        say(fmt::format("{}: new {} items in {:.0f} ms (again: {:.0f} ms); legacy {} items in "
                        "{:.0f} ms; tree churn between walks {}; only-new {}; only-legacy {}",
                        root.path,
                        before.size(),
                        first.millis,
                        again.millis,
                        between.size(),
                        legacyMillis,
                        churn,
                        onlyNew.size(),
                        onlyLegacy.size()));
        list("only-new", onlyNew);
        list("only-legacy", onlyLegacy);
        totals_.items += before.size();
        totals_.churn += churn;
        totals_.onlyNew += onlyNew.size();
        totals_.onlyLegacy += onlyLegacy.size();
    }

    SelftestResult result(std::size_t rootCount) {
        const bool agree = totals_.onlyNew == 0 && totals_.onlyLegacy == 0;
        say(fmt::format("{}{} roots, {} items; tree churn between walks {}; only-new {}; "
                        "only-legacy {}",
                        prefix,
                        rootCount,
                        totals_.items,
                        totals_.churn,
                        totals_.onlyNew,
                        totals_.onlyLegacy));
        return {.verdict =
                    agree ? SelftestResult::Verdict::proved : SelftestResult::Verdict::refuted,
                .report = report_};
    }

private:
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
    return diff.result(roots.size());
}

} // namespace tessarine
