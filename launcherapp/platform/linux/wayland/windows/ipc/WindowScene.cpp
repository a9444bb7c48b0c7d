#include "launcherapp/platform/linux/wayland/windows/ipc/WindowScene.h"

#include <algorithm>
#include <sys/types.h>
#include <utility>

namespace tessarine {

const WindowScene::Window* WindowScene::find(std::uint64_t id) const {
    const auto found =
        std::ranges::find(windows, id, [](const Window& each) { return each.window.id; });
    return found == windows.end() ? nullptr : &*found;
}

std::int64_t processNumber(std::int64_t told) {
    return told > 1 && std::in_range<pid_t>(told) ? told : 0;
}

} // namespace tessarine
