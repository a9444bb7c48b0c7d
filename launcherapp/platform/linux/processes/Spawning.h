#pragma once

#include "launcherapp/platform/ProcessLauncher.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace tessarine {

/// Starts processes as a fresh login would: their own session and process group, no signal ignored
/// or blocked, none of our files open. Who starts one takes note of its end. Main thread only.
namespace Spawning {

/// Where a program's streams lead, by descriptors that the caller keeps; nothing is the null
/// device.
struct Streams {
    std::optional<int> input;
    std::optional<int> output;
    std::optional<int> errors;
};

/// The path of a program that the user may execute: `program` itself if it is such a path, else
/// the first on PATH. Nothing when there is none.
std::optional<std::string> executable(std::string_view program);

/// The process's id. A working directory that isn't there is `home` instead, and that "/". Throws
/// ProcessError when the program can't be executed, or an argument holds a NUL, where it would end.
pid_t start(const ProcessSpec& spec, const std::string& home, Streams streams);

/// A descriptor that can be read once the process has ended; none where the kernel has none.
FileDescriptor endOf(pid_t process);

} // namespace Spawning
} // namespace tessarine
