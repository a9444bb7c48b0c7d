#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <array>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace tessarine {

/// The kernel's list of mounts, kept open, since it is the open file that wakes whoever polls it
/// when the list changes (as an exceptional condition). Reading it asks no mounted file system.
class MountInfoFile {
public:
    MountInfoFile() : file_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {}

    explicit operator bool() const { return static_cast<bool>(file_); }

    int number() const { return file_.number(); }

    /// The whole list; empty when it can't be read.
    std::string text() const {
        std::string text;
        if (!file_ || ::lseek(file_.number(), 0, SEEK_SET) != 0)
            return text;
        std::array<char, 16384> buffer;
        for (;;) {
            const auto length = ::read(file_.number(), buffer.data(), buffer.size());
            if (length <= 0)
                return text;
            text.append(buffer.data(), static_cast<std::size_t>(length));
        }
    }

private:
    FileDescriptor file_;
};

} // namespace tessarine
