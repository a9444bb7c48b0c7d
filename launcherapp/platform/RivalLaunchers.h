#pragma once

#include "launcherapp/platform/Subscription.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tessarine {

/// Other programs that people summon by a key, and that may hold the same one. Main thread only;
/// answers from what was last seen, and waits no longer than 50 ms for the first look.
class RivalLaunchers {
public:
    enum class Change {
        launched,
        quit,
        found, ///< it ran before anybody asked, and shows only now
    };

    virtual ~RivalLaunchers() = default;

    /// How many kinds of launcher are looked out for.
    virtual std::size_t known() const = 0;

    /// Names of those that run now, as their users know them ("KRunner").
    virtual std::vector<std::string> running() const = 0;

    virtual Subscription
    onChange(std::function<void(const std::string& name, Change change)> changed) = 0;

    /// The session became the one in front again, after another user's or a locked screen.
    virtual Subscription onSessionResumed(std::function<void()> resumed) = 0;
};

} // namespace tessarine
