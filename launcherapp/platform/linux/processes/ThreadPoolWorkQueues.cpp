#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"

#include <algorithm>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t utilityThreads = 2;
constexpr Seconds apartRetry{1};
constexpr int lowestNiceness = 19;

// From linux/ioprio.h, which not every system's headers have: the best-effort class, last level.
constexpr int ioprioWhoProcess = 1;
constexpr int ioprioBestEffortLast = (2 << 13) | 7;

/// One for each core but at least two, so that one slow disk doesn't hold up the next job.
std::size_t userInitiatedThreads() {
    return std::clamp<std::size_t>(std::thread::hardware_concurrency(), 2, 4);
}

/// Refusals are fine: the work is then merely less polite.
void giveWay() {
    const auto thread = static_cast<id_t>(::syscall(SYS_gettid));
    const sched_param none{};
    (void)::sched_setscheduler(static_cast<pid_t>(thread), SCHED_BATCH, &none);
    (void)::setpriority(PRIO_PROCESS, thread, lowestNiceness);
    (void)::syscall(SYS_ioprio_set, ioprioWhoProcess, thread, ioprioBestEffortLast);
}

} // namespace

ThreadPoolWorkQueues::Lane::Lane(std::size_t threads, Niceness niceness, AtEnd atEnd)
    : atEnd_(atEnd), working_(threads) {
    for (std::size_t i = 0; i < threads; ++i)
        threads_.emplace_back([this, niceness] { work(niceness); });
}

ThreadPoolWorkQueues::Lane::~Lane() {
    finish();
}

void ThreadPoolWorkQueues::Lane::beginEnd() {
    std::deque<std::function<void()>> dropped;
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
        if (atEnd_ == AtEnd::dropWaiting)
            dropped.swap(waiting_);
    }
    arrived_.notify_all();
}

void ThreadPoolWorkQueues::Lane::finish() {
    beginEnd();
    for (auto& thread : threads_)
        thread.join();
    threads_.clear();
}

bool ThreadPoolWorkQueues::Lane::finish(Seconds atMost) {
    beginEnd();
    {
        std::unique_lock lock(mutex_);
        if (!left_.wait_for(lock, atMost, [this] { return working_ == 0; }))
            return false;
    }
    finish();
    return true;
}

void ThreadPoolWorkQueues::Lane::submit(std::function<void()> job) {
    {
        const std::lock_guard lock(mutex_);
        if (ending_)
            return;
        waiting_.push_back(std::move(job));
    }
    arrived_.notify_one();
}

void ThreadPoolWorkQueues::Lane::work(Niceness niceness) {
    if (niceness == Niceness::lowest)
        giveWay();
    workUntilEnd();
    const std::lock_guard lock(mutex_);
    --working_;
    left_.notify_all();
}

void ThreadPoolWorkQueues::Lane::workUntilEnd() {
    for (;;) {
        std::function<void()> job;
        {
            std::unique_lock lock(mutex_);
            arrived_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
            if (waiting_.empty())
                return;
            job = std::move(waiting_.front());
            waiting_.pop_front();
        }
        job();
    }
}

ThreadPoolWorkQueues::ThreadPoolWorkQueues(MainQueue& mainQueue)
    : mainQueue_(mainQueue),
      userInitiated_(userInitiatedThreads(), Lane::Niceness::normal, Lane::AtEnd::dropWaiting),
      utility_(utilityThreads, Lane::Niceness::lowest, Lane::AtEnd::dropWaiting) {
    wayBack_->queue = &mainQueue;
}

bool ThreadPoolWorkQueues::finish(Seconds atMost) {
    // First those whose jobs may still add to the documents and the log.
    const auto end = mainQueue_.uptime() + atMost;
    bool isOver = userInitiated_.finish(atMost);
    isOver = utility_.finish(end - mainQueue_.uptime()) && isOver;
    finishSerial();
    return isOver;
}

void ThreadPoolWorkQueues::finishSerial() {
    // The log's queue is the first made, and the others' jobs may have something for it.
    for (auto each = serial_.rbegin(); each != serial_.rend(); ++each)
        each->second->finish();
}

ThreadPoolWorkQueues::~ThreadPoolWorkQueues() {
    userInitiated_.finish();
    utility_.finish();
    finishSerial();
    const std::lock_guard lock(wayBack_->mutex);
    wayBack_->queue = nullptr;
}

void ThreadPoolWorkQueues::submitApart(std::function<void()> job,
                                       std::function<void()> completion) {
    struct Work {
        std::function<void()> job;
        std::function<void()> completion;
    };

    const auto work = std::make_shared<Work>(std::move(job), std::move(completion));
    try {
        // Detached, since a thread that waits for a drive in the kernel can't be joined or ended.
        std::thread([work, back = wayBack_] {
            giveWay();
            work->job();
            const std::lock_guard lock(back->mutex);
            if (back->queue)
                back->queue->post(std::move(work->completion));
        }).detach();
    } catch (const std::system_error&) {
        // Other programs of the user's have taken all threads that the system grants. The queues
        // are gone with their way back, which ends on this thread.
        mainQueue_.post([this, work, back = wayBack_] {
            if (!back->queue)
                return;
            mainQueue_.postAfter(apartRetry, [this, work, back] {
                if (back->queue)
                    submitApart(std::move(work->job), std::move(work->completion));
            });
        });
    }
}

SerialQueue& ThreadPoolWorkQueues::serial(std::string_view name) {
    requireMainThread(mainQueue_);
    const auto found =
        std::ranges::find_if(serial_, [name](const auto& each) { return each.first == name; });
    if (found != serial_.end())
        return *found->second;
    // A save must not wait behind other programs for long: somebody may be about to end us.
    auto lane = std::make_unique<Lane>(1, Lane::Niceness::normal, Lane::AtEnd::runWaiting);
    return *serial_.emplace_back(name, std::move(lane)).second;
}

void ThreadPoolWorkQueues::submit(WorkPriority priority,
                                  std::function<void()> job,
                                  std::function<void()> completion) {
    auto& lane = priority == WorkPriority::userInitiated ? userInitiated_ : utility_;
    lane.submit([this, job = std::move(job), completion = std::move(completion)]() mutable {
        job();
        if (completion)
            mainQueue_.post(std::move(completion));
    });
}

} // namespace tessarine
