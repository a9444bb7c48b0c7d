#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "tests/fakes/VirtualTime.h"

#include <memory>
#include <thread>
#include <utility>

namespace tessarine {

/// The main queue in virtual time. Every timer comes as late as its tolerance allows.
class FakeMainQueue : public MainQueue {
public:
    explicit FakeMainQueue(VirtualTime& time) : time_(time) {}

    void post(Task task) override { time_.schedule(Seconds{0}, std::move(task)); }

    void postAfter(Seconds delay, Task task) override { time_.schedule(delay, std::move(task)); }

    Subscription every(Seconds interval, Seconds tolerance, Task task) override {
        const auto timer = std::make_shared<Timer>(Timer{interval, tolerance, std::move(task), 0});
        start(timer);
        return Subscription([this, timer] { time_.cancel(timer->id); });
    }

    double now() const override { return epoch + time_.uptime().count(); }

    Seconds uptime() const override { return time_.uptime(); }

    bool isMainThread() const override { return std::this_thread::get_id() == thread_; }

    /// What `now` is when the virtual time is zero: 2026-01-01 00:00:00 UTC.
    double epoch = 1767225600;

private:
    struct Timer {
        Seconds interval;
        Seconds tolerance;
        Task task;
        std::uint64_t id;
    };

    void start(const std::shared_ptr<Timer>& timer) {
        timer->id = time_.schedule(timer->interval + timer->tolerance, [this, timer] {
            start(timer);
            timer->task();
        });
    }

    VirtualTime& time_;
    std::thread::id thread_ = std::this_thread::get_id();
};

} // namespace tessarine
