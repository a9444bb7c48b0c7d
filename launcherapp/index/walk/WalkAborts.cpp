#include "launcherapp/index/walk/WalkAborts.h"

#include "LauncherCore/text/Paths.h"

#include <algorithm>

namespace tessarine {

void WalkAborts::add(const std::string& path) {
    const std::lock_guard lock(lock_);
    left_.erase(path);
    paths_.insert(path);
}

void WalkAborts::readmit(std::span<const std::string> paths) {
    const std::lock_guard lock(lock_);
    for (const auto& path : paths) {
        left_.erase(path);
        paths_.erase(path);
    }
}

void WalkAborts::readmitWhenIdle(std::span<const std::string> paths) {
    const std::lock_guard lock(lock_);
    left_.insert(paths.begin(), paths.end());
    readmitIdle();
}

bool WalkAborts::contains(std::string_view start) const {
    const std::lock_guard lock(lock_);
    return std::ranges::any_of(
        paths_, [start](const std::string& path) { return Paths::isAtOrBelow(start, path); });
}

/// The caller holds the lock.
void WalkAborts::readmitIdle() {
    std::erase_if(left_, [this](const std::string& path) {
        const bool isWalked = std::ranges::any_of(
            running_, [&path](const auto& start) { return Paths::isAtOrBelow(start, path); });
        if (!isWalked)
            paths_.erase(path);
        return !isWalked;
    });
}

WalkAborts::Running::Running(WalkAborts& aborts, const std::string& start) : aborts_(aborts) {
    const std::lock_guard lock(aborts_.lock_);
    entry_ = aborts_.running_.insert(start);
}

WalkAborts::Running::~Running() {
    const std::lock_guard lock(aborts_.lock_);
    aborts_.running_.erase(entry_);
    aborts_.readmitIdle();
}

} // namespace tessarine
