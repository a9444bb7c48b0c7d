#pragma once

#include "LauncherCore/commands/CommandSpec.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The commands that every user has without writing a line, and how a user's own command takes the
/// place of one. Pure; any thread.
namespace tessarine::BuiltinCommands {

/// One command of kind `system` for each action, in the order in which they are offered. The words
/// by which they are found are their aliases; none has a keyword.
const std::vector<CommandSpec>& actions();

inline constexpr std::string_view settingsID = "sys.settings";

/// The command that opens the desktop's settings as a whole, by the path of their desktop entry.
CommandSpec settings(const std::string& entryPath);

/// `builtIns`, in their order, without those whose action one of the user's commands does.
std::vector<CommandSpec> available(std::span<const CommandSpec> builtIns,
                                   std::span<const CommandSpec> userCommands);

/// The user's commands, in their order. Each that does the action of a built-in gets its name and
/// words as further aliases, so that what found the built-in finds the user's own; two for one
/// action both get them, as either may be the one that is meant. A word that the command has
/// already, as its name, keyword or alias and in whatever case, isn't added.
std::vector<CommandSpec> inheriting(std::span<const CommandSpec> builtIns,
                                    std::span<const CommandSpec> userCommands);

} // namespace tessarine::BuiltinCommands
