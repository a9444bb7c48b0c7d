#include "launcherapp/platform/linux/watching/RootWatch.h"

#include "LauncherCore/index/MountInfo.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/linux/files/MountInfoFile.h"
#include "launcherapp/platform/linux/watching/ChangeFold.h"
#include "launcherapp/platform/linux/watching/TreeWatches.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <map>
#include <mutex>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <utility>

namespace tessarine {

namespace {

using Time = ChangeFold::Time;

/// In how many parts a round of looks is done, and the most of them in a second.
constexpr double slicesPerRound = 30;
constexpr double looksPerSecond = 1000;
constexpr int lowestNiceness = 19;

Time::duration ticks(Seconds duration) {
    return std::chrono::duration_cast<Time::duration>(duration);
}

/// How many to look at together, and how long until the next ones.
struct PollPlan {
    std::size_t looks = 0;
    Seconds pause{0};
};

PollPlan pollPlan(std::size_t polled, Seconds round) {
    const auto slice = round / slicesPerRound;
    const auto all = static_cast<double>(polled);
    const double most = std::max(1.0, looksPerSecond * slice.count());
    const double looks = std::clamp(std::ceil(all / slicesPerRound), 1.0, most);
    return {.looks = static_cast<std::size_t>(looks),
            .pause = std::max(slice, round * looks / all)};
}

} // namespace

/// What the thread and its owner share. The thread holds it too, so that one that hangs does so
/// on memory that is there.
class RootWatch::Thread {
public:
    Thread(Setup setup, std::function<void(TreeChanges)> report)
        : setup_(std::move(setup)), wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
          begun_(TreeWatches::now()), report_(std::move(report)) {
        if (!wake_)
            throw std::system_error(errno, std::generic_category());
    }

    void run();

    void end() {
        {
            const std::lock_guard lock(mutex_);
            report_ = nullptr;
        }
        wakeUp();
    }

    void cover(std::vector<std::string> directories, double readAt) {
        constexpr double nanosecondsInSecond = 1e9;
        {
            const std::lock_guard lock(mutex_);
            covers_.push_back(
                {.directories = std::move(directories),
                 .readAt = static_cast<TreeWatches::Stamp>(readAt * nanosecondsInSecond)});
        }
        wakeUp();
    }

    TreeWatchCounts counts() const { return {.watched = watched_, .polled = polled_}; }

private:
    struct Cover {
        std::vector<std::string> directories;
        TreeWatches::Stamp readAt;
    };

    using Mounts = std::map<std::string, MountEntry>;

    void wakeUp() { (void)::eventfd_write(wake_.number(), 1); }

    bool isEnding() const {
        const std::lock_guard lock(mutex_);
        return !report_;
    }

    std::vector<Cover> takeCovers() {
        const std::lock_guard lock(mutex_);
        return std::exchange(covers_, {});
    }

    void report(TreeChanges changes) const {
        const std::lock_guard lock(mutex_);
        if (report_)
            report_(std::move(changes));
    }

    Mounts mounts() const;
    void compareMounts(TreeWatches& watches);
    void doWhatIsDue(TreeWatches& watches, ChangeFold& fold);
    void schedule(const TreeWatches& watches);
    void wait(const TreeWatches& watches, const ChangeFold& fold, bool isBusy);

    const Setup setup_;
    const FileDescriptor wake_;
    const TreeWatches::Stamp begun_;
    std::atomic<std::size_t> watched_ = 0;
    std::atomic<std::size_t> polled_ = 0;

    /// Held for the length of a hand-over alone; also while `report_` is called, so that its owner
    /// hears nothing once it has taken it back.
    mutable std::mutex mutex_;
    std::function<void(TreeChanges)> report_; ///< only posts; none once the owner has gone
    std::vector<Cover> covers_;

    // The thread's own from here on.
    MountInfoFile mountInfo_;
    Mounts mounts_;
    std::optional<Time> eventsDue_;
    std::optional<Time> mountsDue_;
    std::optional<Time> pollDue_;
    std::optional<Time> restDue_;
};

/// Those that stand in the root or carry it.
RootWatch::Thread::Mounts RootWatch::Thread::mounts() const {
    Mounts mounts;
    for (auto& mount : MountInfo::parse(mountInfo_.text())) {
        if (Paths::isAtOrBelow(mount.path, setup_.root) ||
            Paths::isAtOrBelow(setup_.root, mount.path))
            mounts.emplace(mount.path, mount);
    }
    return mounts;
}

void RootWatch::Thread::compareMounts(TreeWatches& watches) {
    const auto before = std::exchange(mounts_, mounts());
    for (const auto& [path, mount] : before) {
        if (!mounts_.contains(path))
            watches.mountChanged(path);
    }
    for (const auto& [path, mount] : mounts_) {
        const auto old = before.find(path);
        if (old == before.end() || old->second != mount)
            watches.mountChanged(path);
    }
}

void RootWatch::Thread::run() {
    (void)::pthread_setname_np(::pthread_self(), "fsQueue");
    (void)::setpriority(PRIO_PROCESS, static_cast<id_t>(::syscall(SYS_gettid)), lowestNiceness);
    ChangeFold fold(setup_.root, setup_.latency);
    mounts_ = mounts();
    TreeWatches watches(setup_.root, begun_, setup_.budget, fold);
    while (!isEnding()) {
        for (auto& [directories, readAt] : takeCovers())
            watches.cover(std::move(directories), readAt);
        doWhatIsDue(watches, fold);
        const bool isBusy = watches.placeSome();
        schedule(watches);
        const auto counts = watches.counts();
        watched_ = counts.watched;
        polled_ = counts.polled;
        wait(watches, fold, isBusy);
    }
}

void RootWatch::Thread::doWhatIsDue(TreeWatches& watches, ChangeFold& fold) {
    const auto now = std::chrono::steady_clock::now();
    const auto isDue = [now](std::optional<Time>& time) {
        if (!time || *time > now)
            return false;
        time.reset();
        return true;
    };
    if (isDue(eventsDue_))
        watches.readEvents();
    if (isDue(mountsDue_))
        compareMounts(watches);
    if (isDue(restDue_))
        watches.lookAtResting();
    if (isDue(pollDue_))
        watches.pollSome(pollPlan(watches.polled(), setup_.pollRound).looks);
    if (const auto due = fold.due(); due && *due <= now)
        report(fold.take(now));
}

void RootWatch::Thread::schedule(const TreeWatches& watches) {
    const auto now = std::chrono::steady_clock::now();
    if (watches.resting() == 0)
        restDue_.reset();
    else if (!restDue_)
        restDue_ = now + ticks(std::max(setup_.latency, setup_.gathering));
    if (watches.polled() == 0)
        pollDue_.reset();
    else if (!pollDue_)
        pollDue_ = now + ticks(pollPlan(watches.polled(), setup_.pollRound).pause);
}

void RootWatch::Thread::wait(const TreeWatches& watches, const ChangeFold& fold, bool isBusy) {
    constexpr int forever = -1; // poll takes no notice of a negative descriptor either
    const auto unlessDue = [](const std::optional<Time>& due, int descriptor) {
        return due ? forever : descriptor;
    };
    const int events = watches.events().value_or(forever);
    std::array<pollfd, 3> sources{{
        {.fd = wake_.number(), .events = POLLIN, .revents = 0},
        {.fd = unlessDue(eventsDue_, events), .events = POLLIN, .revents = 0},
        {.fd = unlessDue(mountsDue_, mountInfo_.number()), .events = POLLPRI, .revents = 0},
    }};
    std::optional<Time> next;
    for (const auto& due : {eventsDue_, mountsDue_, pollDue_, restDue_, fold.due()}) {
        if (due && (!next || *due < *next))
            next = due;
    }
    int milliseconds = forever;
    if (isBusy)
        milliseconds = 0;
    else if (next)
        milliseconds = static_cast<int>(std::max<std::int64_t>(
            0,
            std::chrono::ceil<std::chrono::milliseconds>(*next - std::chrono::steady_clock::now())
                .count()));
    if (::poll(sources.data(), sources.size(), milliseconds) <= 0)
        return;
    const auto soon = std::chrono::steady_clock::now() + ticks(setup_.gathering);
    eventfd_t wakeUps = 0;
    if (sources[0].revents)
        (void)::eventfd_read(wake_.number(), &wakeUps);
    if (sources[1].revents)
        eventsDue_ = soon;
    if (sources[2].revents)
        mountsDue_ = soon;
}

RootWatch::RootWatch(Setup setup, std::function<void(TreeChanges)> report)
    : thread_(std::make_shared<Thread>(std::move(setup), std::move(report))) {
    // Nobody can end a thread that waits for a dead drive, and nobody may wait for it: it holds
    // what it uses, reports to nobody once we are gone, and ends with its drive or the program.
    std::thread([thread = thread_] { thread->run(); }).detach();
}

RootWatch::~RootWatch() {
    thread_->end();
}

void RootWatch::cover(std::vector<std::string> directories, double readAt) {
    thread_->cover(std::move(directories), readAt);
}

TreeWatchCounts RootWatch::counts() const {
    return thread_->counts();
}

} // namespace tessarine
