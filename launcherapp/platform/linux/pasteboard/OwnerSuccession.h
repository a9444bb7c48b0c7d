#pragma once

#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"

#include <cstdint>
#include <optional>

namespace tessarine {

/// Follows which of other programs' copies may be an earlier one that somebody put there again. One
/// thread.
class OwnerSuccession {
public:
    using Time = TransferClock::time_point;

    /// What the change of that count had brought is gone, and nothing lies there.
    void emptied(std::uint64_t count, Time now);

    /// Another program than the last has put something there, with the change of that count.
    void taken(std::uint64_t count, Time now);

    /// The program that owns what lies there has put something there again.
    void takenAgain(std::uint64_t count);

    /// What is ours lies there.
    void ended() { *this = {}; }

    /// Of what lies there.
    const std::optional<PasteboardSuccession>& current() const { return current_; }

private:
    struct Gone {
        std::uint64_t count = 0;
        Time at;
    };

    std::optional<Gone> gone_;     ///< while nothing lies there
    std::uint64_t ownedSince_ = 0; ///< the first change that what lies there may have come with
    std::optional<PasteboardSuccession> current_;
};

} // namespace tessarine
