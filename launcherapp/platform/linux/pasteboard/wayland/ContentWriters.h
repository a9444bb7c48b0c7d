#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/pasteboard/TransferLimits.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <poll.h>
#include <string>
#include <vector>

namespace tessarine {

/// Hands what we own to the programs that want it, several at once, each as fast as it takes them.
/// One that goes away or stops taking costs nothing beyond the limit of silence. One thread, in
/// which SIGPIPE is blocked.
class ContentWriters {
public:
    using Time = TransferClock::time_point;

    /// Programs beyond that many at the same time get nothing.
    static constexpr std::size_t most = 32;

    explicit ContentWriters(TransferLimits limits) : limits_(limits) {}

    /// `bytes` is not null.
    void add(std::shared_ptr<const std::string> bytes, FileDescriptor into, Time now);

    /// Writes what is taken, without waiting, and gives up on those that take nothing for too long.
    void goOn(Time now);

    /// What to sleep on.
    std::vector<pollfd> doors() const;

    /// When `goOn` has to be called though nobody takes anything; nothing while nobody wants any.
    std::optional<Time> deadline() const;

private:
    struct Writer {
        std::shared_ptr<const std::string> bytes;
        FileDescriptor into;
        std::size_t written = 0;
        Time lastSign;
    };

    bool isOver(Writer& writer, Time now) const;

    TransferLimits limits_;
    std::vector<Writer> writers_;
};

} // namespace tessarine
