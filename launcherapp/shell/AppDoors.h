#pragma once

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/accessibility/AtspiAccessibility.h"
#include "launcherapp/platform/linux/desktop/DBusApplicationBus.h"
#include "launcherapp/platform/linux/desktop/DesktopFileManager.h"
#include "launcherapp/platform/linux/desktop/ThemeIcons.h"
#include "launcherapp/platform/linux/files/FileResidentCopies.h"
#include "launcherapp/platform/linux/files/PosixDirectoryReader.h"
#include "launcherapp/platform/linux/files/PosixFileStore.h"
#include "launcherapp/platform/linux/files/ProcMountTable.h"
#include "launcherapp/platform/linux/files/QtFileTypes.h"
#include "launcherapp/platform/linux/network/QtHttpClient.h"
#include "launcherapp/platform/linux/panel/wayland/WaylandActivationTokens.h"
#include "launcherapp/platform/linux/processes/LocalDictionary.h"
#include "launcherapp/platform/linux/processes/PipeProgramReader.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/QtProcessLauncher.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "launcherapp/platform/linux/surroundings/DesktopLook.h"
#include "launcherapp/platform/linux/surroundings/SessionWindows.h"
#include "launcherapp/platform/linux/watching/InotifyDirectoryWatcher.h"
#include "launcherapp/platform/linux/watching/InotifyTreeWatcher.h"
#include "launcherapp/platform/linux/x11/X11ActivationTokens.h"
#include "launcherapp/shell/ProductInfo.h"

#include <memory>
#include <string>
#include <utility>

namespace tessarine {

/// The program's doors to the world. Main thread only; `App` has the one there is.
struct AppDoors {
    explicit AppDoors(const Environment& environment)
        : AppDoors(environment, DesktopLook::display(environment)) {}

    /// As it was found at the start; what all doors and rows go by.
    const DesktopSurroundings desktop;
    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
    PosixFileStore files;
    InotifyDirectoryWatcher watcher{queue};
    QtProcessLauncher processes;
    PipeProgramReader programs;
    DBusApplicationBus bus{queue};
    ThemeIcons icons;
    std::unique_ptr<WindowList> windows;
    std::unique_ptr<WindowControl> control;
    std::unique_ptr<ActivationTokens> tokens;
    std::shared_ptr<Accessibility> accessibility = std::make_shared<AtspiAccessibility>();
    FileResidentCopies copies;
    LocalDictionary dictionary{processes};
    std::shared_ptr<const DirectoryReader> directories = std::make_shared<PosixDirectoryReader>();
    ProcMountTable mounts;
    InotifyTreeWatcher trees{queue};
    std::shared_ptr<const FileTypes> fileTypes = std::make_shared<QtFileTypes>();
    DesktopFileManager fileManager{queue, *tokens};
    QtHttpClient web;

private:
    AppDoors(const Environment& environment, DesktopSurroundings found)
        : AppDoors(
              environment, found, sessionWindowDoors(found, std::string(ProductInfo::bundleID))) {}

    AppDoors(const Environment& environment, DesktopSurroundings found, WindowDoors made)
        : desktop(std::move(found)), processes(environment), programs(queue, environment),
          icons(environment), windows(std::move(made.list)), control(std::move(made.control)),
          tokens(activationTokens(environment)), copies(environment) {}

    static std::unique_ptr<ActivationTokens> activationTokens(const Environment& environment) {
        if (QtWayland::isThere())
            return std::make_unique<WaylandActivationTokens>();
        return std::make_unique<X11ActivationTokens>(environment);
    }
};

} // namespace tessarine
