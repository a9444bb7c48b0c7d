#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class Accessibility;
class Alerts;
class AppCatalog;
class Diagnostics;
class FileTypes;
class RunningApps;
class WindowList;
class WorkQueues;

/// Goes to a place inside another application: opens a deep link or the application, then presses
/// named buttons in it, one jump at a time. When a button can't be pressed, the application comes
/// forward whatever `activate` says, so that the user lands where they can press by hand. Main
/// thread only; buttons are looked for and pressed off it.
class JumpRunner {
public:
    static constexpr Seconds waitForApp{8};
    static constexpr Seconds waitPerName{4};

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        const AppCatalog& catalog;
        const FileTypes& types;
        RunningApps& running;
        const WindowList& windows;
        std::shared_ptr<Accessibility> accessibility;
        Alerts& alerts;
        Diagnostics& diagnostics;
        /// What CommandRuntime does under these names.
        std::function<std::optional<std::string>(std::string_view text)> resolve;
        std::function<void(std::vector<std::string> urls, CommandRuntime::Activation activation)>
            open;
        /// Brings the application forward if it runs; else starts it. Logs its own failures.
        std::function<void(const InstalledApp& app)> launch;
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
    std::shared_ptr<Parts> parts_;
};

} // namespace tessarine
