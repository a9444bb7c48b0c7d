#include "launcherapp/platform/linux/watching/InotifyTreeWatcher.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/linux/watching/RootWatch.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// To whom a root's changes go: nobody once its stream has ended.
struct Receiver {
    TreeWatcher::Changed changed;
};

struct WatchedRoot {
    std::string root;
    Seconds latency{0};
    std::shared_ptr<Receiver> receiver;
    std::unique_ptr<RootWatch> watch;
};

} // namespace

class InotifyTreeWatcher::State : public std::enable_shared_from_this<State> {
public:
    State(MainQueue& queue, Limits limits)
        : queue_(queue), limits_(limits), budget_(std::make_shared<WatchBudget>(limits.watches)) {}

    WatchedRoot makeRoot(const std::string& root, Seconds latency, const Changed& changed) {
        const auto parked = std::ranges::find_if(parked_, [&](const WatchedRoot& candidate) {
            return candidate.root == root && candidate.latency == latency;
        });
        if (parked != parked_.end()) {
            auto adopted = std::move(*parked);
            parked_.erase(parked);
            adopted.receiver->changed = changed;
            return adopted;
        }
        const auto receiver = std::make_shared<Receiver>(Receiver{changed});
        auto report = [&queue = queue_, weak = std::weak_ptr(receiver)](TreeChanges changes) {
            queue.post([weak, changes = std::move(changes)] {
                const auto alive = weak.lock();
                if (!alive || !alive->changed)
                    return;
                const auto callback = alive->changed; // it may end its own stream
                callback(changes);
            });
        };
        return {.root = root,
                .latency = latency,
                .receiver = receiver,
                .watch =
                    std::make_unique<RootWatch>(RootWatch::Setup{.root = root,
                                                                 .latency = latency,
                                                                 .pollRound = limits_.pollRound,
                                                                 .gathering = limits_.gathering,
                                                                 .budget = budget_},
                                                std::move(report))};
    }

    /// Keeps the watches of a stream that ended for the rest of this turn of the main queue: who
    /// changes the set of roots ends one stream and begins another, and to place a hundred
    /// thousand watches anew is no small thing.
    void park(std::vector<WatchedRoot> roots) {
        for (auto& root : roots) {
            root.receiver->changed = nullptr;
            parked_.push_back(std::move(root));
        }
        queue_.post([weak = weak_from_this()] {
            if (const auto state = weak.lock())
                state->parked_.clear();
        });
    }

    std::set<Stream*> streams;

private:
    MainQueue& queue_;
    Limits limits_;
    std::shared_ptr<WatchBudget> budget_;
    std::vector<WatchedRoot> parked_;
};

class InotifyTreeWatcher::Stream : public TreeStream {
public:
    Stream(const std::shared_ptr<State>& state, std::vector<WatchedRoot> roots)
        : state_(state), roots_(std::move(roots)) {
        state->streams.insert(this);
    }

    ~Stream() override {
        if (const auto state = state_.lock()) {
            state->streams.erase(this);
            state->park(std::move(roots_));
        }
    }

    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    void
    cover(const std::string& root, std::vector<std::string> directories, double readAt) override {
        const auto found = std::ranges::find(
            roots_, std::string(Paths::withoutEndSlashes(root)), &WatchedRoot::root);
        if (found != roots_.end())
            found->watch->cover(std::move(directories), readAt);
    }

    void end() { roots_.clear(); }

    TreeWatchCounts counts() const {
        TreeWatchCounts sum;
        for (const auto& root : roots_) {
            const auto counts = root.watch->counts();
            sum.watched += counts.watched;
            sum.polled += counts.polled;
        }
        return sum;
    }

private:
    std::weak_ptr<State> state_;
    std::vector<WatchedRoot> roots_;
};

InotifyTreeWatcher::Limits InotifyTreeWatcher::systemLimits() {
    // Where the file can't be read, this is what kernels before 5.11 granted everybody.
    std::size_t granted = 8192;
    std::ifstream("/proc/sys/fs/inotify/max_user_watches") >> granted;
    return {.watches = granted / 2};
}

InotifyTreeWatcher::InotifyTreeWatcher(MainQueue& queue, Limits limits)
    : state_(std::make_shared<State>(queue, limits)) {}

InotifyTreeWatcher::~InotifyTreeWatcher() {
    const auto streams = state_->streams;
    for (auto* const stream : streams)
        stream->end();
}

std::unique_ptr<TreeStream>
InotifyTreeWatcher::watch(const std::vector<std::string>& roots, Seconds latency, Changed changed) {
    std::vector<WatchedRoot> watched;
    try {
        for (const auto& given : roots) {
            const auto root = std::string(Paths::withoutEndSlashes(given));
            if (std::ranges::find(watched, root, &WatchedRoot::root) == watched.end())
                watched.push_back(state_->makeRoot(root, latency, changed));
        }
    } catch (const std::system_error&) {
        return nullptr; // no thread or no descriptor is left for us
    }
    return std::make_unique<Stream>(state_, std::move(watched));
}

TreeWatchCounts InotifyTreeWatcher::counts() const {
    TreeWatchCounts sum;
    for (const auto* stream : state_->streams) {
        const auto counts = stream->counts();
        sum.watched += counts.watched;
        sum.polled += counts.polled;
    }
    return sum;
}

} // namespace tessarine
