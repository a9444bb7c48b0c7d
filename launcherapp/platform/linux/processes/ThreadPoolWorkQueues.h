#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/WorkQueues.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tessarine {

/// Work queues over a few threads of this process. Those of utility priority run at the lowest
/// priority that the system gives, so that they never take a core from somebody who waits.
/// On destruction the serial queues' jobs are all run, other jobs that have not begun are dropped.
class ThreadPoolWorkQueues : public WorkQueues {
public:
    explicit ThreadPoolWorkQueues(MainQueue& mainQueue);
    ~ThreadPoolWorkQueues() override;
    ThreadPoolWorkQueues(const ThreadPoolWorkQueues&) = delete;
    ThreadPoolWorkQueues& operator=(const ThreadPoolWorkQueues&) = delete;

    /// Ends as the destruction does; what is submitted from now on is dropped. For the end of the
    /// program, while what the waiting jobs use still lives. The serial queues' jobs are waited for
    /// as long as they take, all others `atMost`. False when one of those still runs: then nothing
    /// that it uses may be destroyed, this object included. Main thread.
    [[nodiscard]] bool finish(Seconds atMost);

    SerialQueue& serial(std::string_view name) override;
    void submit(WorkPriority priority,
                std::function<void()> job,
                std::function<void()> completion) override;
    void submitApart(std::function<void()> job, std::function<void()> completion) override;

private:
    /// One line of waiting jobs and the threads that work it off.
    class Lane : public SerialQueue {
    public:
        enum class AtEnd { runWaiting, dropWaiting };
        enum class Niceness { normal, lowest };

        Lane(std::size_t threads, Niceness niceness, AtEnd atEnd);
        ~Lane() override;
        Lane(const Lane&) = delete;
        Lane& operator=(const Lane&) = delete;

        void submit(std::function<void()> job) override;

        /// Waits for the threads; a second call does nothing.
        void finish();

        /// The same for so long. False when a job still runs then.
        bool finish(Seconds atMost);

    private:
        void beginEnd();
        void work(Niceness niceness);
        void workUntilEnd();

        const AtEnd atEnd_;
        // The queue itself is what threads share: nothing is called while the lock is held.
        std::mutex mutex_;
        std::condition_variable arrived_;
        std::condition_variable left_;
        std::deque<std::function<void()>> waiting_;
        bool ending_ = false;
        std::size_t working_; ///< threads that have not come to their end
        std::vector<std::thread> threads_;
    };

    /// The way back for threads that may outlive us: closed by our end.
    struct WayBack {
        std::mutex mutex;
        MainQueue* queue = nullptr; ///< null once it is closed
    };

    void finishSerial();

    MainQueue& mainQueue_;
    std::shared_ptr<WayBack> wayBack_ = std::make_shared<WayBack>();
    std::vector<std::pair<std::string, std::unique_ptr<Lane>>> serial_; ///< in order of creation
    Lane userInitiated_;
    Lane utility_;
};

} // namespace tessarine
