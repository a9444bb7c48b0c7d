#include "launcherapp/index/proof/TreeWatchSelftest.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Verdict = SelftestResult::Verdict;

/// For the watch to stand, and for what the new folder itself caused to be reported, so that the
/// file alone can be the cause of what comes after.
constexpr Seconds settling{1};
constexpr Seconds patience{15};
constexpr Seconds latency{0.2};

struct Mapping {
    std::string_view path;
    std::string_view root; ///< empty for none
    std::string_view failure;
};

constexpr auto mappings = std::to_array<Mapping>({
    {"/Users/x/Developer", "/Users/x/Developer", "the root itself did not map to itself"},
    {"/Users/x/Developer/inner/a",
     "/Users/x/Developer/inner",
     "nested roots: the longest root did not win"},
    {"/Users/x/Developer/b/c", "/Users/x/Developer", "a path under the outer root mapped wrongly"},
    {"/tmp/elsewhere", "", "a path under no root mapped somewhere"},
    {"/Users/x/Developers",
     "",
     "DECOY: a sibling with a shared prefix (Developers) mapped to Developer"},
});

std::vector<std::string_view> wrongMappings(TreeWatchSelftest::RootOf rootOf) {
    const std::vector<std::string> roots{"/Users/x/Developer", "/Users/x/Developer/inner"};
    std::vector<std::string_view> failures;
    for (const auto& [path, root, failure] : mappings) {
        if (rootOf(path, roots).value_or("") != root)
            failures.push_back(failure);
    }
    return failures;
}

/// Lives until its result is told: each task that it leaves with the queue holds it.
class LiveWatch : public std::enable_shared_from_this<LiveWatch> {
public:
    LiveWatch(const TreeWatchSelftest::Doors& doors,
              std::string folder,
              std::function<void(SelftestResult)> done)
        : doors_(doors), folder_(std::move(folder)), done_(std::move(done)) {}

    void begin() {
        try {
            doors_.files.makeDirectories(folder_);
            // What is reported is the real path, and the temporary folder may be a link.
            folder_ = doors_.files.realPath(folder_).value_or(folder_);
        } catch (const FileError& error) {
            finishLater(Verdict::notMeasured, fmt::format("NOT MEASURED, {}", error.what()));
            return;
        }
        const auto weak = weak_from_this();
        stream_ = doors_.watcher.watch({folder_}, latency, [weak](const TreeChanges& changes) {
            if (const auto self = weak.lock())
                self->take(changes);
        });
        if (!stream_) {
            finishLater(Verdict::refuted, "could not create a stream");
            return;
        }
        doors_.queue.postAfter(settling, [self = shared_from_this()] { self->poke(); });
    }

private:
    void poke() {
        isPoked_ = true;
        try {
            doors_.files.append(folder_ + "/poke.txt", "poke\n");
        } catch (const FileError& error) {
            finish(Verdict::notMeasured, fmt::format("NOT MEASURED, {}", error.what()));
            return;
        }
        doors_.queue.postAfter(patience, [self = shared_from_this()] { self->judge(); });
    }

    void take(const TreeChanges& changes) {
        if (!isPoked_)
            return;
        for (const auto& event : changes.events)
            paths_.insert(event.path);
        if (paths_.contains(folder_))
            judge();
    }

    void judge() {
        if (paths_.contains(folder_))
            finish(Verdict::proved,
                   fmt::format("a live stream delivered {} path(s) decoded as C strings, the poked "
                               "directory among them; root mapping passes {} checks with a "
                               "shared-prefix decoy",
                               paths_.size(),
                               mappings.size()));
        else if (paths_.empty())
            finish(Verdict::notMeasured,
                   fmt::format("NOT MEASURED, no event arrived within {:.0f} s for {}",
                               patience.count(),
                               folder_));
        else
            finish(Verdict::refuted,
                   fmt::format("decoded paths do not name the poked directory: got {}",
                               fmt::join(paths_, ", ")));
    }

    /// For a result that is known before `run` has returned.
    void finishLater(Verdict verdict, std::string report) {
        doors_.queue.post([self = shared_from_this(), verdict, report = std::move(report)] {
            self->finish(verdict, report);
        });
    }

    void finish(Verdict verdict, const std::string& report) {
        const auto done = std::exchange(done_, nullptr);
        if (!done)
            return; // the wait of a test that is over
        stream_.reset();
        try {
            doors_.files.remove(folder_);
        } catch (const FileError&) {
            // What the system's own clean-up will find.
        }
        done({.verdict = verdict, .report = "selftest-fsevents: " + report});
    }

    TreeWatchSelftest::Doors doors_;
    std::string folder_;
    std::function<void(SelftestResult)> done_;
    std::unique_ptr<TreeStream> stream_;
    std::set<std::string> paths_; ///< reported since the file was made
    bool isPoked_ = false;
};

} // namespace

void TreeWatchSelftest::run(const Doors& doors,
                            const Environment& environment,
                            RootOf rootOf,
                            std::function<void(SelftestResult)> done) {
    if (const auto failures = wrongMappings(rootOf); !failures.empty()) {
        doors.queue.post(
            [done = std::move(done),
             report = fmt::format("selftest-fsevents: {}", fmt::join(failures, "; "))] {
                done({.verdict = Verdict::refuted, .report = report});
            });
        return;
    }
    const auto folder = fmt::format("{}/tsr-fsevents-{:x}",
                                    environment.temporaryDir,
                                    std::chrono::steady_clock::now().time_since_epoch().count());
    std::make_shared<LiveWatch>(doors, folder, std::move(done))->begin();
}

} // namespace tessarine
