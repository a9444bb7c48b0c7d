#pragma once

#include "launcherapp/platform/Environment.h"
#include "launcherapp/shell/CommandLine.h"

#include <memory>

namespace tessarine {

/// The running program: every long-lived object, made in start-up order and wired here, nowhere
/// else. Main thread only.
class App {
public:
    App(CommandLine commandLine, Environment environment);
    ~App();

    /// Starts the services and runs until the program is told to end. Returns the exit status.
    int run();

private:
    struct Services;
    std::unique_ptr<Services> services_;
};

} // namespace tessarine
