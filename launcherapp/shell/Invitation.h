#pragma once

#include <optional>
#include <string>

namespace tessarine {

struct Environment;

/// What a user who just started the program is told: how to bring it up, and what is missing.
/// Pure; any thread.
namespace Invitation {

/// Whether whoever started the program looks at a terminal that it goes down with.
enum class StartedFrom { desktop, terminal };

/// The panel's chord, as it stands on the keyboard.
struct Chord {
    std::optional<std::string> keys; ///< nothing while none is held
    std::string status;              ///< why
};

std::string withPanel(const Chord& chord, StartedFrom startedFrom);

std::string withoutPanel(const Environment& environment, StartedFrom startedFrom);

/// Why no panel can be shown, for a run in which none can.
std::string missingDisplay(const Environment& environment);

} // namespace Invitation
} // namespace tessarine
