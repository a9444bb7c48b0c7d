#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A program that could not be started; `what()` is a sentence for the user.
class ProcessError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct ProcessSpec {
    std::vector<std::string> arguments; ///< the program, a path or a name on PATH, comes first
    std::map<std::string, std::string> environment; ///< set on top of the user's own
    std::string workingDirectory;                   ///< empty: the user's home
    std::string name; ///< what to call it to the session's process manager; may be empty
};

/// Starts programs. Main thread only.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    /// Starts a program that lives on when the launcher ends: its own session and process group,
    /// its input and output on the null device, its own scope where systemd runs. Returns its
    /// process id. Throws ProcessError when it can't be executed.
    virtual std::int64_t startDetached(const ProcessSpec& spec) = 0;

    /// The path of a program that the user may execute: `program` itself if it is such a path,
    /// else the first on PATH. Nothing when there is none.
    virtual std::optional<std::string> executable(std::string_view program) const = 0;
};

} // namespace tessarine
