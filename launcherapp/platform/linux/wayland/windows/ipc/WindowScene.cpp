#include "launcherapp/platform/linux/wayland/windows/ipc/WindowScene.h"

#include <algorithm>

namespace tessarine {

const WindowScene::Window* WindowScene::find(std::uint64_t id) const {
    const auto found =
        std::ranges::find(windows, id, [](const Window& each) { return each.window.id; });
    return found == windows.end() ? nullptr : &*found;
}

} // namespace tessarine
