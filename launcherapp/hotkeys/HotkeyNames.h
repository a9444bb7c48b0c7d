#pragma once

#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/platform/HotkeyRegistrar.h"

#include <cstdint>
#include <string>

namespace tessarine {

/// Who a chord is for.
namespace HotkeyIDs {
inline constexpr std::uint32_t panel = 1;
inline constexpr std::uint32_t clipboard = 2;
inline constexpr std::uint32_t voice = 3;
inline constexpr std::uint32_t firstCommand = 4; ///< and above: commands of the user's

/// "panel", "clipboard", "voice" or "command 17".
std::string name(std::uint32_t id);

/// What the desktop's list of shortcuts calls the program's own; a command's by its number alone.
HotkeyPurpose purpose(std::uint32_t id);
} // namespace HotkeyIDs

/// How chords read. Pure; any thread.
namespace HotkeyNames {

/// As reports and logs have it: "⌃⌥⇧⌘" for what it holds, in that order, and the key's label;
/// "key 200" for a key without one.
std::string display(const HotkeyBinding& binding);

/// As it stands on this desktop's keyboards: "Super+Shift+V".
std::string onKeyboard(const HotkeyBinding& binding);

} // namespace HotkeyNames
} // namespace tessarine
