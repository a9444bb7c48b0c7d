#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

struct DesktopSurroundings;

/// How a key of the desktop's own is made to bring the panel up, where programs get none: by the
/// program's actions on the session bus, which such a key can call.
struct DesktopKey {
    std::string where; ///< what to do, "put this line into ~/.config/river/init"
    std::string line;  ///< what to write there, or the command to choose

    bool operator==(const DesktopKey&) const = default;
};

/// Pure; any thread.
namespace DesktopKeys {

/// The command that does an action of the program's, "toggle" or "clipboard", and starts the
/// program first if it doesn't run.
std::string command(std::string_view action);

/// For the panel, with the key that it would have taken itself. Nothing without a session bus, over
/// which such a key calls.
std::optional<DesktopKey> forPanel(const DesktopSurroundings& surroundings);

/// What the desktop whose settings those are goes by, "sway" or "XFCE"; empty for one without a
/// name.
std::string desktop(const DesktopSurroundings& surroundings);

/// "put this line into ~/.config/river/init:" and the line, on a line of its own.
std::string advice(const DesktopKey& key);

} // namespace DesktopKeys
} // namespace tessarine
