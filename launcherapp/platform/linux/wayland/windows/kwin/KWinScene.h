#pragma once

#include "launcherapp/platform/linux/wayland/windows/ipc/WindowScene.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What the program inside KWin tells of windows and screens. Pure; any thread.
namespace tessarine::KWinScene {

/// Windows in KWin's order, screens too, the focused one as the main one. A window's number is the
/// first half of the identifier that KWin gave it, which is a random one, so no two windows of a
/// session share it and every connection tells the same. Nothing for what is no scene.
std::optional<WindowScene> read(nlohmann::json scene);

/// A window's number as the program inside KWin writes it: sixteen hexadecimal digits.
std::string key(std::uint64_t window);

/// 0 for what is no such number.
std::uint64_t number(std::string_view key);

} // namespace tessarine::KWinScene
