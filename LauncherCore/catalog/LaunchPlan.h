#pragma once

#include "LauncherCore/catalog/AppRegistry.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The steps that start an application, decided before any is taken. A value.
struct LaunchPlan {
    /// Set when the session bus is to be asked first; the commands then serve when it fails.
    std::optional<std::string> busName;
    std::vector<std::string> uris;                  ///< what the bus is to open; may be empty
    std::vector<std::vector<std::string>> commands; ///< program and arguments; may be empty
    std::string workingDirectory;                   ///< empty: the user's home
    std::string problem; ///< why there is nothing to start, in words; empty when there is

    bool operator==(const LaunchPlan&) const = default;
};

namespace LaunchPlans {

/// How `application` starts, opening `uris`. `terminal` is the program and arguments that come
/// before a command which needs a terminal; empty when none was found.
LaunchPlan plan(const InstalledApp& application,
                std::span<const std::string> uris,
                std::span<const std::string> terminal);

/// The user's terminal as words to put before a command: the one that TERMINAL names, then the
/// desktop's own choice (xdg-terminal-exec, x-terminal-emulator), then well-known ones. Empty when
/// none is there. `executable` gives a program's path, or nothing.
std::vector<std::string>
terminalWords(std::string_view terminalVariable,
              const std::function<std::optional<std::string>(std::string_view)>& executable);

} // namespace LaunchPlans
} // namespace tessarine
