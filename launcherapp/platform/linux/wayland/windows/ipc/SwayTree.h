#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/WindowScene.h"

#include <cstdint>
#include <optional>
#include <string_view>

/// The tree of containers that sway tells ("GET_TREE" of sway-ipc(7)). Pure; any thread.
namespace tessarine::SwayTree {

/// Windows oldest first, screens from left to right in sway's order, the focused one as the main
/// one: sway has none. What is put into the scratchpad is hidden. Nothing for what is no tree.
std::optional<WindowScene> read(std::string_view json);

/// The window that has got the focus, of an event of windows; nothing for any other event.
std::optional<std::uint64_t> focused(std::string_view event);

} // namespace tessarine::SwayTree
