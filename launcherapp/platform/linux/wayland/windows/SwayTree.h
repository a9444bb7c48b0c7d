#pragma once

#include "launcherapp/platform/linux/wayland/windows/WindowScene.h"

#include <optional>
#include <string_view>

/// The tree of containers that sway tells ("GET_TREE" of sway-ipc(7)). Pure; any thread.
namespace tessarine::SwayTree {

/// Windows oldest first, screens from left to right in sway's order, the focused one as the main
/// one: sway has none. What is put into the scratchpad is hidden. Nothing for what is no tree.
std::optional<WindowScene> read(std::string_view json);

} // namespace tessarine::SwayTree
