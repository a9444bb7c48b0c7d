#pragma once

#include <optional>
#include <string>

namespace tessarine {

struct HotkeyBinding;

/// Chords as desktop portals write them ("Shortcuts" of the XDG specifications). Pure; any thread.
namespace PortalTrigger {

/// "LOGO+SHIFT+v"; nothing for a key without a name.
std::optional<std::string> of(const HotkeyBinding& binding);

} // namespace PortalTrigger
} // namespace tessarine
