#pragma once

#include "LauncherCore/commands/CommandSpec.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tessarine {

class CommandRuntime;
class CommandStore;
struct ModeContext;

/// What the modes of the commands use beside what every mode does.
struct CommandModeServices {
    CommandStore& store;
    CommandRuntime& runtime;
    /// The commands that every user has, beside these of the user's own.
    std::function<std::vector<CommandSpec>(std::span<const CommandSpec> userCommands)> builtIn;
};

/// Running commands from the command line.
namespace CommandModes {

/// Runs the command of this id, name, keyword or alias with the value of "--arg". Ends with 0 when
/// it was run, 2 when there is none, 4 when it is one that only the panel shows.
void run(ModeContext& context, const std::string& name);

} // namespace CommandModes
} // namespace tessarine
