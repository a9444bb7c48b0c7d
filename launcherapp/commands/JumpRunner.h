#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

class Accessibility;
class Alerts;
class AppCatalog;
class CommandRuntime;
class Diagnostics;
class RunningApps;
class WorkQueues;

/// Goes to a place inside another application: opens a deep link or the application, then presses
/// named buttons in it, one jump at a time. Main thread only; buttons are looked for and pressed
/// off it.
class JumpRunner {
public:
    static constexpr Seconds waitForApp{8};
    static constexpr Seconds waitPerName{4};

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        AppCatalog& catalog;
        RunningApps& running;
        CommandRuntime& runtime;
        std::shared_ptr<Accessibility> accessibility;
        Alerts& alerts;
        Diagnostics& diagnostics;
    };

    explicit JumpRunner(Services services);
    ~JumpRunner();
    JumpRunner(const JumpRunner&) = delete;
    JumpRunner& operator=(const JumpRunner&) = delete;

    void run(const CommandSpec& command, const std::string& argument);

    /// The same pressing in an application that runs, for finding out what its buttons are called.
    /// `told` is called once, later, with a line that begins "PRESSED: " or says why not.
    void probe(const std::string& bundleID,
               const std::vector<std::string>& names,
               std::function<void(std::string line)> told);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
