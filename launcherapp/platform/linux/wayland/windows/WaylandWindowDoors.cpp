#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/wayland/windows/ToplevelDoors.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/HyprlandIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowControl.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/IpcWindowList.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/ReturningIpc.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/SwayIpc.h"
#include "launcherapp/platform/linux/wayland/windows/kwin/KWinIpc.h"

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

/// The list and the control have a connection each: one waits for no answer of the other's.
std::optional<WindowDoors> ipcDoors(const ReturningIpc::Connect& connect) {
    auto first = connect();
    auto second = first ? connect() : nullptr;
    if (!second)
        return std::nullopt;
    return WindowDoors{.list = std::make_unique<IpcWindowList>(
                           std::make_unique<ReturningIpc>(std::move(first), connect)),
                       .control = std::make_unique<IpcWindowControl>(
                           std::make_unique<ReturningIpc>(std::move(second), connect))};
}

bool isKWin(const WaylandConnection& connection) {
    DesktopSurroundings told;
    if (connection.answers()) {
        for (const auto& global : connection.registry().globals())
            told.globals.insert(global.interface);
    }
    return DesktopTable::isKWin(told);
}

} // namespace

std::optional<WindowDoors> waylandWindowDoors(const std::string& ownApplicationID) {
    if (auto doors = ipcDoors(compositorIpc))
        return doors;
    auto connection = std::make_unique<WaylandConnection>();
    if (isKWin(*connection)) {
        if (auto doors = ipcDoors(KWinIpc::connect))
            return doors;
    }
    if (!ForeignToplevels::areTold(*connection))
        return std::nullopt;
    auto toplevels = std::make_shared<ForeignToplevels>(std::move(connection), ownApplicationID);
    return WindowDoors{.list = std::make_unique<ToplevelWindowList>(toplevels),
                       .control = std::make_unique<ToplevelWindowControl>(toplevels)};
}

} // namespace tessarine
