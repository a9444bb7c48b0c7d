#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tessarine {

class CommandCatalog;
class CommandRuntime;
class CommandStore;
class ListCommands;
struct ModeContext;

/// What the modes of the commands use beside what every mode does.
struct CommandModeServices {
    CommandStore& store;
    const CommandCatalog& catalog;
    CommandRuntime& runtime;
    const ListCommands& lists;
    /// `JumpRunner::probe`.
    std::function<void(const std::string& bundleID,
                       const std::vector<std::string>& names,
                       std::function<void(std::string line)> told)>
        probe;
    /// Whether all that a command started was handed over, a jump's presses included.
    std::function<bool()> isSettled;
};

/// Running commands from the command line.
namespace CommandModes {

/// Runs the command of this id, name, keyword or alias with the value of "--arg". Ends with 0 when
/// it was run and what it started was handed over, after 0.4 s at the least and about 15 s at the
/// most; 2 when there is none, 4 when it is one that only the panel shows.
void run(ModeContext& context, const std::string& name);

/// Presses the buttons that the words after `bundleID` name in the running application of that
/// desktop-file id, and prints how that went. Ends with 0 when all were pressed, else with 1.
void jumpPressProbe(ModeContext& context, const std::string& bundleID);

/// The self-test of the built-in commands.
void selftestSystemCommands(ModeContext& context, const std::string& value);

} // namespace CommandModes
} // namespace tessarine
