#pragma once

#include "launcherapp/platform/WorkQueues.h"
#include "tests/fakes/VirtualTime.h"

#include <deque>
#include <map>
#include <string>
#include <utility>

namespace tessarine {

/// Background work in virtual time: each job takes `duration`, and its completion follows at once.
class FakeWorkQueues : public WorkQueues {
public:
    explicit FakeWorkQueues(VirtualTime& time) : time_(time) {}

    Seconds duration{0};
    int submitted = 0;           ///< jobs given so far, the serial queues' not counted
    WorkPriority lastPriority{}; ///< of the last of them

    SerialQueue& serial(std::string_view name) override {
        return queues_.try_emplace(std::string(name), time_).first->second;
    }

    void submit(WorkPriority priority,
                std::function<void()> job,
                std::function<void()> completion) override {
        ++submitted;
        lastPriority = priority;
        time_.schedule(duration, [job = std::move(job), completion = std::move(completion)] {
            job();
            if (completion)
                completion();
        });
    }

    void submitApart(std::function<void()> job, std::function<void()> completion) override {
        ++submittedApart;
        auto takes = apartDuration;
        if (!durationsApart.empty()) {
            takes = durationsApart.front();
            durationsApart.pop_front();
        }
        time_.schedule(takes, [job = std::move(job), completion = std::move(completion)] {
            job();
            completion();
        });
    }

    Seconds apartDuration{0};           ///< of the jobs with a thread of their own
    std::deque<Seconds> durationsApart; ///< of the next ones, each its own
    int submittedApart = 0;             ///< those given so far

private:
    struct Serial : SerialQueue {
        explicit Serial(VirtualTime& virtualTime) : time(virtualTime) {}

        void submit(std::function<void()> job) override {
            time.schedule(Seconds{0}, std::move(job));
        }

        VirtualTime& time;
    };

    VirtualTime& time_;
    std::map<std::string, Serial> queues_;
};

} // namespace tessarine
