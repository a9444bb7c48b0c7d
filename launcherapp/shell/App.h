#pragma once

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/CommandLine.h"

#include <memory>

namespace tessarine {

/// The running program. It makes what lives as long as that, in start-up order: `AppDoors` with the
/// doors to the world, `AppServices` with the services that every run has, `RowWiring`, which gives
/// the search model its rows and what they do, and `DesktopPresence` with the panel, its chords and
/// the tray icon. Main thread only.
class App {
public:
    /// `launchedAt` is when the process began, by the main queue's uptime. Throws
    /// std::runtime_error when a demonstration finds no place for what it keeps.
    App(CommandLine commandLine, Environment environment, Seconds launchedAt);
    ~App();

    /// Starts the services and runs until the program is told to end. Returns the exit status.
    /// `argv` is what the process was started with; by it a resident program starts itself anew
    /// when its compositor dies.
    int run(char** argv);

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
