#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>

namespace tessarine {

/// Time that passes only when a test lets it: what is due runs in the order of its time, and among
/// equal times in the order it was given.
class VirtualTime {
public:
    using Task = std::function<void()>;

    Seconds uptime() const { return uptime_; }

    std::uint64_t schedule(Seconds delay, Task task) {
        const std::pair key{uptime_ + (delay.count() > 0 ? delay : Seconds{0}), ++last_};
        due_.emplace(key, std::move(task));
        times_.emplace(last_, key.first);
        return last_;
    }

    void cancel(std::uint64_t id) {
        if (const auto found = times_.find(id); found != times_.end()) {
            due_.erase({found->second, id});
            times_.erase(found);
        }
    }

    /// Runs everything that is due now, and what that makes due now.
    void settle() { advance(Seconds{0}); }

    /// Lets time pass, running what falls due on the way.
    void advance(Seconds duration) {
        const Seconds end = uptime_ + duration;
        while (!due_.empty() && due_.begin()->first.first <= end) {
            auto next = due_.extract(due_.begin());
            uptime_ = std::max(uptime_, next.key().first);
            times_.erase(next.key().second);
            next.mapped()();
        }
        uptime_ = end;
    }

    bool idle() const { return due_.empty(); }

private:
    Seconds uptime_{0};
    std::uint64_t last_ = 0;
    std::map<std::pair<Seconds, std::uint64_t>, Task> due_;
    std::map<std::uint64_t, Seconds> times_;
};

} // namespace tessarine
