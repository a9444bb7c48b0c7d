#include "launcherapp/index/proof/IndexSoak.h"

#include "LauncherCore/query/UsageLog.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MountTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr int folders = 40;
constexpr int filesAtFirst = 20;     ///< in each folder
constexpr int batchesPerSecond = 10; ///< the pokes of a second come in as many parts
constexpr std::size_t filesKept = 400;
constexpr double bar = 0.1; ///< of a core
/// Until the last events have been reported.
constexpr Seconds settling = FileIndex::streamLatency + Seconds{1};
constexpr Seconds publicationCheck{0.2};
constexpr Seconds patience{60};

/// No drives: the trial is about one folder.
class NoMounts : public MountTable {
public:
    std::vector<Mount> mounts() const override { return {}; }

    Subscription onChange(std::function<void()>) override { return {}; }
};

} // namespace

/// One trial while it runs.
struct IndexSoak::Trial {
    Trial(const FileIndex::Doors& doors,
          const std::shared_ptr<IndexWalker>& walker,
          Prefs& prefs,
          std::string scratchFolder)
        : folder(std::move(scratchFolder)), volumes(mounts, prefs, *walker, doors.diagnostics),
          index(doors,
                walker,
                volumes,
                {.searchFolders = [path = folder] { return std::vector{path}; },
                 .foldersOnlyRoots = [] { return std::vector<std::string>(); }},
                folder + "/.cache/index.json",
                FileIndex::Run::resident) {}

    std::string pathOf(int number) const {
        return fmt::format("{}/folder {}/poked {}.txt", folder, number % folders, number);
    }

    const std::string folder;
    NoMounts mounts;
    MountedVolumes volumes;
    FileIndex index;
    std::function<void(std::string_view)> print;
    Done done;
    Subscription timer;
    Seconds startedAt{0};
    double seconds = 0;
    double cpuBefore = 0;
    int batches = 0;
    int pokes = 0;
    int created = 0;
    std::deque<std::string> files; ///< poked and still there, oldest first
    std::string lastRemoved;
    Seconds settledAt{0};
};

IndexSoak::IndexSoak(FileIndex::Doors doors,
                     std::shared_ptr<IndexWalker> walker,
                     Prefs& prefs,
                     const Environment& environment,
                     std::function<double()> cpuSeconds)
    : doors_(doors), walker_(std::move(walker)), prefs_(prefs), home_(environment.home),
      cpuSeconds_(std::move(cpuSeconds)) {}

IndexSoak::~IndexSoak() = default;

void IndexSoak::start(double seconds, std::function<void(std::string_view)> print, Done done) {
    const auto now = static_cast<std::int64_t>(doors_.queue.now());
    trial_ = std::make_unique<Trial>(
        doors_, walker_, prefs_, fmt::format("{}/.tsr-index-soak-{}", home_, now));
    auto& trial = *trial_;
    trial.print = std::move(print);
    trial.done = std::move(done);
    trial.seconds = seconds;
    try {
        for (int i = 0; i < folders * filesAtFirst; ++i)
            write(fmt::format("{}/folder {}/file {}.txt", trial.folder, i % folders, i));
    } catch (const FileError& error) {
        report({.verdict = SelftestResult::Verdict::notMeasured,
                .report = fmt::format("index-soak: NOT MEASURED, {}", error.what())});
        return;
    }
    trial.index.start();
    trial.startedAt = doors_.queue.uptime();
    trial.cpuBefore = cpuSeconds_();
    trial.timer =
        doors_.queue.every(Seconds{1.0 / batchesPerSecond}, Seconds{0}, [this] { poke(); });
}

void IndexSoak::write(const std::string& path) {
    doors_.files.makeDirectories(std::string(Paths::parent(path)));
    doors_.files.append(path, "x");
}

void IndexSoak::poke() {
    auto& trial = *trial_;
    try {
        for (int i = 0; i < pokesPerSecond / batchesPerSecond; ++i, ++trial.pokes)
            pokeOnce();
    } catch (const FileError& error) {
        report({.verdict = SelftestResult::Verdict::refuted,
                .report = fmt::format("index-soak FAILED: {}", error.what())});
        return;
    }
    const double elapsed = (doors_.queue.uptime() - trial.startedAt).count();
    if (++trial.batches % batchesPerSecond == 0)
        trial.print(fmt::format("  {:6.1f}s  poked {}", elapsed, trial.files.back()));
    if (elapsed >= trial.seconds)
        settle();
}

/// Creates, renames or removes one file.
void IndexSoak::pokeOnce() {
    auto& trial = *trial_;
    if (trial.files.size() > filesKept) {
        trial.lastRemoved = trial.files.front();
        doors_.files.remove(trial.lastRemoved);
        trial.files.pop_front();
    } else if (trial.pokes % 5 == 4) {
        const auto renamed = trial.files.back() + ".renamed";
        doors_.files.rename(trial.files.back(), renamed);
        trial.files.back() = renamed;
    } else {
        trial.files.push_back(trial.pathOf(trial.created++));
        write(trial.files.back());
    }
}

void IndexSoak::settle() {
    trial_->timer.end();
    doors_.queue.postAfter(settling, [this] {
        trial_->settledAt = doors_.queue.uptime();
        awaitLastChanges();
    });
}

/// A walk may be held for half a minute after the one before.
void IndexSoak::awaitLastChanges() {
    const bool isLate = doors_.queue.uptime() - trial_->settledAt > patience;
    if (!problem() || isLate) {
        finish();
        return;
    }
    trial_->index.rebuild(FileIndex::Force::no);
    doors_.queue.postAfter(publicationCheck, [this] { awaitLastChanges(); });
}

bool IndexSoak::finds(const std::string& path) const {
    const std::string name(Paths::lastPart(path));
    const auto found = trial_->index.search({.query = name, .limit = 6}, UsageLog());
    return std::ranges::any_of(found, [&](const auto& each) { return each.item.id == path; });
}

std::optional<std::string> IndexSoak::problem() const {
    const auto& trial = *trial_;
    if (!finds(trial.files.back()))
        return trial.files.back() + " is not found";
    if (!trial.lastRemoved.empty() && finds(trial.lastRemoved))
        return trial.lastRemoved + " is still found";
    return std::nullopt;
}

void IndexSoak::finish() {
    const auto& trial = *trial_;
    const double elapsed = (doors_.queue.uptime() - trial.startedAt).count();
    const double share = (cpuSeconds_() - trial.cpuBefore) / elapsed;
    const auto figures = fmt::format("{} rebuilds over {} pokes in {:.0f} s, {:.1f}% of a core",
                                     trial.index.published(),
                                     trial.pokes,
                                     elapsed,
                                     share * 100);
    auto failure = problem();
    if (!failure && share >= bar)
        failure = "a tenth of a core was passed";
    if (!failure)
        report({.verdict = SelftestResult::Verdict::proved, .report = "index-soak: " + figures});
    else
        report({.verdict = SelftestResult::Verdict::refuted,
                .report = fmt::format("index-soak FAILED: {} ({})", *failure, figures)});
}

void IndexSoak::report(const SelftestResult& result) {
    auto& trial = *trial_;
    trial.timer.end();
    try {
        doors_.files.remove(trial.folder);
    } catch (const FileError& error) {
        trial.print(error.what());
    }
    const auto done = trial.done;
    done(result);
}

} // namespace tessarine
