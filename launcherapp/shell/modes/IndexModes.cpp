#include "launcherapp/shell/modes/IndexModes.h"

#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/IndexRoots.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/index/proof/IndexSelftests.h"
#include "launcherapp/index/proof/IndexSoak.h"
#include "launcherapp/index/proof/TreeWatchSelftest.h"
#include "launcherapp/index/proof/VolumesSelftest.h"
#include "launcherapp/index/proof/WalkerDiff.h"
#include "launcherapp/index/proof/WalkerSelftests.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/modes/Modes.h"

#include <fmt/format.h>

#include <charconv>
#include <ctime>
#include <memory>
#include <optional>
#include <set>

namespace tessarine {

namespace {

std::function<double()> clockOf(const MainQueue& queue) {
    return [&queue] { return queue.uptime().count(); };
}

std::optional<double> positiveNumber(const std::string& text) {
    double number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = error == std::errc{} && rest == text.data() + text.size();
    return isWhole && number > 0 ? std::optional(number) : std::nullopt;
}

/// How a drive was walked, on one line.
struct ProbedDrive {
    std::string line;
    bool opened = false;
};

ProbedDrive probe(const IndexWalker& walker, const MountedDrive& drive) {
    const auto policy = IndexRoots::policy(IndexRoots::Kind::drive, IndexRoots::totalCap);
    const auto walk = walker.walkTree(drive.path, 1, policy);
    if (!walk.opened)
        return {.line = fmt::format(
                    "drive-probe: {} ({}): could not be opened", drive.name, drive.path)};
    const auto [folders, files] = IndexRebuild::driveCounts(walk.items);
    return {.line = fmt::format("drive-probe: {} ({}): {} folders and {} files in {:.0f} ms{}",
                                drive.name,
                                drive.path,
                                folders,
                                files,
                                walk.millis,
                                walk.capped ? ", capped" : ""),
            .opened = true};
}

} // namespace

void IndexModes::selftestWalker(ModeContext& context, const std::string&) {
    finish(context, walkerSelftest(*context.indexing->walker, context.files, context.environment));
}

void IndexModes::selftestDelta(ModeContext& context, const std::string&) {
    finish(context, deltaSelftest(*context.indexing->walker, context.files, context.environment));
}

void IndexModes::selftestIndex(ModeContext& context, const std::string&) {
    // On a machine without a cache the first walk fills the index, and may still be at it.
    constexpr Seconds retryAfter{0.1};
    if (context.indexing->index.items()->size() == 0 && context.indexing->index.isBuilding()) {
        context.queue.postAfter(retryAfter, [&context] { selftestIndex(context, {}); });
        return;
    }
    const auto timing = context.commandLine.has("--scan-timing") ? ScanTiming::yes : ScanTiming::no;
    finish(context,
           indexSelftest(*context.indexing->index.items(), timing, clockOf(context.queue)));
}

void IndexModes::selftestIndexDuty(ModeContext& context, const std::string&) {
    finish(context, indexDutySelftest());
}

void IndexModes::selftestFsevents(ModeContext& context, const std::string&) {
    TreeWatchSelftest::run(
        {.queue = context.queue, .watcher = context.indexing->trees, .files = context.files},
        context.environment,
        IndexRoots::rootOf,
        [&context](const SelftestResult& result) { finish(context, result); });
}

void IndexModes::selftestVolumes(ModeContext& context, const std::string&) {
    finish(context, volumesSelftest());
}

void IndexModes::walkerDiff(ModeContext& context, const std::string&) {
    std::vector<WalkerDiffRoot> roots;
    for (const auto& root : context.indexing->index.roots()) {
        const auto kind = IndexRoots::kindOf(
            root, context.indexing->volumes.indexedNames(), context.prefs.foldersOnlyRoots());
        roots.push_back({root, IndexRoots::policy(kind, IndexRoots::totalCap)});
    }
    context.indexing->work.run(
        WorkPriority::userInitiated,
        [walker = context.indexing->walker, roots, clock = clockOf(context.queue)] {
            return walkerDiff(*walker, roots, clock);
        },
        [&context](const SelftestResult& result) { finish(context, result); });
}

void IndexModes::indexSoak(ModeContext& context, const std::string& seconds) {
    const auto duration = positiveNumber(seconds);
    if (!duration) {
        context.print(fmt::format("index-soak FAILED: \"{}\" is no number of seconds", seconds));
        context.finish(1);
        return;
    }
    // Lives until the process ends, which is when the trial does.
    const auto soak = std::make_shared<IndexSoak>(
        FileIndex::Doors{.queue = context.queue,
                         .work = context.indexing->work,
                         .files = context.files,
                         .watcher = context.indexing->trees,
                         .diagnostics = context.indexing->diagnostics},
        context.indexing->walker,
        context.prefs,
        context.environment,
        [] { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; });
    soak->start(*duration, context.print, [&context, soak](const SelftestResult& result) {
        finish(context, result);
    });
}

void IndexModes::driveProbe(ModeContext& context, const std::string&) {
    const auto drives = context.indexing->volumes.drives();
    if (drives.empty()) {
        context.print("drive-probe: no external drive mounted (NOT MEASURED: nothing to walk)");
        context.finish(2);
        return;
    }
    // Each on its own: one that hangs keeps none of the others from being told.
    constexpr Seconds patience{60};
    const auto waiting = std::make_shared<std::set<std::string>>();
    const auto opened = std::make_shared<bool>(false);
    for (const auto& drive : drives)
        waiting->insert(drive.path);
    for (const auto& drive : drives) {
        context.indexing->work.runApart(
            [walker = context.indexing->walker, drive] { return probe(*walker, drive); },
            [&context, waiting, opened, path = drive.path](const ProbedDrive& probed) {
                context.print(probed.line);
                *opened = *opened || probed.opened;
                waiting->erase(path);
                if (waiting->empty())
                    context.finish(*opened ? 0 : 2);
            });
    }
    context.queue.postAfter(patience, [&context, waiting, opened] {
        for (const auto& path : *waiting)
            context.print(
                fmt::format("drive-probe: {}: NOT MEASURED, no answer within a minute", path));
        context.finish(*opened ? 0 : 2);
    });
}

} // namespace tessarine
