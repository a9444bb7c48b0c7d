#pragma once

#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/platform/WindowList.h"

#include <memory>
#include <optional>
#include <string>

namespace tessarine {

/// The two doors to windows, which tell of one window by one number. Main thread only.
struct WindowDoors {
    std::unique_ptr<WindowList> list;
    std::unique_ptr<WindowControl> control;
};

/// Those that the running Wayland compositor opens: its own interface where it has one that is
/// known, and is connected to again when the connection is lost, else what it tells task bars, of
/// which windows can be closed alone. Nothing where it tells none of its windows to ordinary
/// programs, or doesn't answer within `WaylandConnection::patience`; KWin is waited for at most
/// twice `CompositorIpc::patience` more. `ownApplicationID` is what
/// this program's windows call themselves.
std::optional<WindowDoors> waylandWindowDoors(const std::string& ownApplicationID);

} // namespace tessarine
