#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace tessarine {

/// The resident copies of this program in the user's session. Main thread only.
class ResidentCopies {
public:
    virtual ~ResidentCopies() = default;

    /// Makes this process known as a resident copy until it ends, however it ends.
    virtual void announce() = 0;

    /// Process ids of the other resident copies. Empty when the session has no place where copies
    /// can find each other.
    virtual std::vector<std::int64_t> others() const = 0;

    /// Asks a copy to quit; returns at once.
    virtual void terminate(std::int64_t process) = 0;

    /// Ends a copy without asking; returns at once.
    virtual void forceTerminate(std::int64_t process) = 0;

    /// Whether there is no such process any more.
    virtual bool isGone(std::int64_t process) const = 0;

    /// Waits on the calling thread. Only for the moment before the run loop takes its first event.
    virtual void pause(std::chrono::milliseconds duration) = 0;
};

} // namespace tessarine
