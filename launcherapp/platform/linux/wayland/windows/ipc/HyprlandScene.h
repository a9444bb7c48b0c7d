#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/WindowScene.h"

#include <optional>
#include <string_view>

/// What Hyprland tells of its windows and monitors ("j/clients" and "j/monitors"). Pure; any
/// thread.
namespace tessarine::HyprlandScene {

/// Windows in Hyprland's order; a window's number is its address. Those of a special workspace that
/// no monitor shows are hidden. Places and sizes are without the border, which is told nowhere. The
/// active window is the last focused one, where its workspace is that of the focused monitor.
/// Nothing for what isn't lists of both.
std::optional<WindowScene> read(std::string_view clients, std::string_view monitors);

} // namespace tessarine::HyprlandScene
