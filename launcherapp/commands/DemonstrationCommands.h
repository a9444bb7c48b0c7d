#pragma once

#include "LauncherCore/commands/CommandSpec.h"

#include <vector>

namespace tessarine {

/// A fixed list of commands of several kinds, for pictures and trials. Pure; any thread.
std::vector<CommandSpec> demonstrationCommands();

} // namespace tessarine
