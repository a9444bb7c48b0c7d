#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"

#include "launcherapp/platform/linux/wayland/windows/ToplevelDoors.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/HyprlandIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowControl.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowList.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/ReturningIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/SwayIpc.h"

#include <QString>
#include <utility>

namespace tessarine {

namespace {

/// One that can be asked; null when there is none.
std::unique_ptr<CompositorIpc> compositorIpc() {
    if (auto path = qEnvironmentVariable("SWAYSOCK").toStdString(); !path.empty()) {
        if (auto ipc = std::make_unique<SwayIpc>(path); ipc->ability().available)
            return ipc;
    }
    if (auto folder = HyprlandIpc::runningFolder()) {
        if (auto ipc = std::make_unique<HyprlandIpc>(*std::move(folder)); ipc->ability().available)
            return ipc;
    }
    return nullptr;
}

} // namespace

std::optional<WindowDoors> waylandWindowDoors(const std::string& ownApplicationID) {
    // The list and the control have a connection each: one waits for no answer of the other's.
    if (auto ipc = compositorIpc()) {
        if (auto second = compositorIpc())
            return WindowDoors{
                .list = std::make_unique<IpcWindowList>(
                    std::make_unique<ReturningIpc>(std::move(ipc), compositorIpc)),
                .control = std::make_unique<IpcWindowControl>(
                    std::make_unique<ReturningIpc>(std::move(second), compositorIpc))};
    }
    auto connection = std::make_unique<WaylandConnection>();
    if (!ForeignToplevels::areTold(*connection))
        return std::nullopt;
    auto toplevels = std::make_shared<ForeignToplevels>(std::move(connection), ownApplicationID);
    return WindowDoors{.list = std::make_unique<ToplevelWindowList>(toplevels),
                       .control = std::make_unique<ToplevelWindowControl>(toplevels)};
}

} // namespace tessarine
