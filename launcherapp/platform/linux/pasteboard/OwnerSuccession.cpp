#include "launcherapp/platform/linux/pasteboard/OwnerSuccession.h"

#include <chrono>

namespace tessarine {

void OwnerSuccession::emptied(std::uint64_t count, Time now) {
    gone_ = {.count = count, .at = now};
    current_.reset();
}

void OwnerSuccession::taken(std::uint64_t count, Time now) {
    current_.reset();
    ownedSince_ = count;
    if (!gone_)
        return;
    current_ = {.first = gone_->count,
                .last = gone_->count,
                .pause = std::chrono::floor<std::chrono::milliseconds>(now - gone_->at)};
    ownedSince_ = gone_->count;
    gone_.reset();
}

void OwnerSuccession::takenAgain(std::uint64_t count) {
    current_ = {.first = ownedSince_, .last = count - 1, .isSameOwner = true};
}

} // namespace tessarine
