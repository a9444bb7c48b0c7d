#pragma once

#include "launcherapp/catalog/AppLauncher.h"
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
class FileOpener;
class FileTypes;
class RunningApps;
class WindowList;
class WorkQueues;
struct CommandSpec;

/// Goes to a place inside another application: opens a deep link or the application, then presses
/// named buttons in it, one jump at a time. When a button can't be pressed, the application comes
/// forward whatever `activate` says, so that the user lands where they can press by hand. Main
/// thread only; buttons are looked for and pressed off it.
class JumpRunner {
public:
    static constexpr Seconds waitForApp{8};
    static constexpr Seconds waitPerName{4};
    /// How long a disk may take to say what the file is that a jump leads to.
    static constexpr Seconds diskPatience{5};

    using Activation = AppLauncher::Activation;

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        AppCatalog& catalog;
        AppLauncher& launcher;
        const FileOpener& opener;
        std::shared_ptr<const FileTypes> types; ///< a disk that hangs may ask it after our end
        RunningApps& running;
        const WindowList& windows;
        std::shared_ptr<Accessibility> accessibility;
        Alerts& alerts;
        Diagnostics& diagnostics;
        /// What CommandRuntime does under these names.
        std::function<std::optional<std::string>(std::string_view text)> resolve;
        std::function<void(std::vector<std::string> urls, Activation activation)> open;
    };

    explicit JumpRunner(Services services);
    ~JumpRunner();
    JumpRunner(const JumpRunner&) = delete;
    JumpRunner& operator=(const JumpRunner&) = delete;

    /// Runs a command of kind `jump`: its link goes to the application that `path` names, else to
    /// who opens such links. Without names to press it is opened at once; else the jump waits for
    /// those before it. What came of it is logged.
    void run(const CommandSpec& command, const std::string& argument);

    /// The same pressing in an application that runs, for finding out what its buttons are called.
    /// `told` is called once, later, with a line that begins "PRESSED: " or says why not.
    void probe(const std::string& bundleID,
               const std::vector<std::string>& names,
               std::function<void(std::string line)> told);

    /// Whether every jump has ended and handed over what it opens.
    bool isSettled() const;

private:
    struct Core;
    std::shared_ptr<Core> core_;
};

} // namespace tessarine
