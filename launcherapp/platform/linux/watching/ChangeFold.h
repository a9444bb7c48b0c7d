#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/TreeWatcher.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace tessarine {

/// Many changes of one tree as few reports: each directory once, the first report at once and a
/// later one not before `latency` has passed since the last. One thread only.
class ChangeFold {
public:
    using Time = std::chrono::steady_clock::time_point;

    ChangeFold(std::string root, Seconds latency) : root_(std::move(root)), latency_(latency) {}

    void note(std::string directory) {
        ++changes_;
        if (!dropped_)
            directories_.insert(std::move(directory));
    }

    /// Some were lost: that anything may have changed stands for the others too.
    void noteDropped() {
        ++changes_;
        dropped_ = true;
        directories_.clear();
    }

    bool isDropped() const { return dropped_; }

    /// When the next report is due; nothing when there is nothing to report.
    std::optional<Time> due() const {
        if (!dropped_ && directories_.empty())
            return std::nullopt;
        return nextReport_;
    }

    TreeChanges take(Time now) {
        nextReport_ = now + std::chrono::duration_cast<Time::duration>(latency_);
        TreeChanges changes;
        changes.folded = std::exchange(changes_, 0);
        if (std::exchange(dropped_, false))
            changes.events.push_back({.path = root_, .flags = TreeChanges::droppedFlag});
        while (!directories_.empty())
            changes.events.push_back(
                {.path = std::move(directories_.extract(directories_.begin()).value())});
        return changes;
    }

private:
    std::string root_;
    Seconds latency_;
    std::set<std::string> directories_;
    std::size_t changes_ = 0;
    bool dropped_ = false;
    Time nextReport_; ///< long past before the first
};

} // namespace tessarine
