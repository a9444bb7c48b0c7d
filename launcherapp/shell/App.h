#pragma once

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/CommandLine.h"

#include <memory>

namespace tessarine {

/// The running program: every long-lived object, made in start-up order and wired here, nowhere
/// else. Main thread only.
class App {
public:
    /// `launchedAt` is when the process began, by the main queue's uptime. Throws
    /// std::runtime_error when a demonstration finds no place for what it keeps.
    App(CommandLine commandLine, Environment environment, Seconds launchedAt);
    ~App();

    /// Starts the services and runs until the program is told to end. Returns the exit status.
    int run();

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
