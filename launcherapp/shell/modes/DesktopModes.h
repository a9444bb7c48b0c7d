#pragma once

#include <string>

namespace tessarine {

struct ModeContext;

/// The running desktop from the command line.
namespace DesktopModes {

/// Prints what this desktop is and how it stands with each ability, a line each.
void abilities(ModeContext& context, const std::string& value);

} // namespace DesktopModes
} // namespace tessarine
