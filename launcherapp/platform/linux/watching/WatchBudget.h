#pragma once

#include <atomic>
#include <cstddef>

namespace tessarine {

/// How many of the user's watches the program may hold, over all threads that place them. The
/// other half is for the user's other programs: an editor that finds none left stops noticing
/// changes, and says so to a user who never heard of watches.
class WatchBudget {
public:
    explicit WatchBudget(std::size_t limit) : limit_(limit) {}

    /// Takes one, if there is one left.
    bool take() {
        if (used_.fetch_add(1) < limit_)
            return true;
        used_.fetch_sub(1);
        return false;
    }

    void giveBack(std::size_t count) { used_.fetch_sub(count); }

    bool isSpent() const { return used_ >= limit_; }

private:
    const std::size_t limit_;
    std::atomic<std::size_t> used_ = 0;
};

} // namespace tessarine
