#include "launcherapp/platform/linux/pasteboard/ChangeCounter.h"

namespace tessarine {

std::uint64_t ChangeCounter::writes() {
    onItsWay_ = ++value_;
    return value_;
}

std::optional<std::uint64_t> ChangeCounter::othersChange() {
    if (onItsWay_)
        return std::nullopt;
    return ++value_;
}

void ChangeCounter::arrived(std::uint64_t count) {
    if (onItsWay_ == count)
        onItsWay_.reset();
}

std::optional<std::uint64_t> ChangeCounter::refused(std::uint64_t count) {
    if (onItsWay_ != count)
        return std::nullopt;
    onItsWay_.reset();
    return ++value_;
}

} // namespace tessarine
