#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"

#include <cstddef>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>

namespace tessarine {

/// Hands what we own to the programs that want it, several at once, each as fast as it takes them.
/// One that takes nothing for a while is waited for, as it would hold what it has until then for
/// the whole; it costs a descriptor. One thread, in which SIGPIPE is blocked.
class ContentWriters {
public:
    using Time = TransferClock::time_point;

    /// With more at the same time, the one that has taken nothing for the longest gets no more.
    static constexpr std::size_t most = 32;

    /// `bytes` is not null.
    void add(std::shared_ptr<const std::string> bytes, FileDescriptor into, Time now);

    /// Writes what is taken, without waiting, and lets go of those that have all or are gone.
    void goOn(Time now);

    /// What to sleep on.
    std::vector<pollfd> doors() const;

private:
    struct Writer {
        std::shared_ptr<const std::string> bytes;
        FileDescriptor into;
        std::size_t written = 0;
        Time lastSign;
    };

    static bool isOver(Writer& writer, Time now);

    std::vector<Writer> writers_;
};

} // namespace tessarine
