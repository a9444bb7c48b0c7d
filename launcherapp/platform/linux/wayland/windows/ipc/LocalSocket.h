#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tessarine {

/// A connection to another program's socket in the file system. Nothing but `wait` waits. Once the
/// other end has gone it is closed, and gives and takes nothing. One thread.
class LocalSocket {
public:
    /// A closed one.
    LocalSocket() = default;

    /// Closed where nobody listens there, or too many wait to be listened to.
    explicit LocalSocket(const std::string& path);

    bool isOpen() const { return static_cast<bool>(socket_); }

    /// To wait on. Not to be asked of a closed one.
    int descriptor() const { return socket_.number(); }

    /// The process that listens there, or did when this was connected; nothing for a closed one,
    /// and for a process that is not to be seen from here.
    std::optional<pid_t> listener() const;

    /// What the other end has no room for now goes with the next call of anything here.
    void send(std::string_view bytes);

    /// What has come since the last call; the last bytes come with the closing.
    std::string takeWhatCame();

    /// Waits until something has come or the other end has gone. False when neither has by `end`.
    bool wait(std::chrono::steady_clock::time_point end);

private:
    void sendOn();

    FileDescriptor socket_;
    std::string unsent_;
};

} // namespace tessarine
