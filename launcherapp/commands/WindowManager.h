#pragma once

#include "LauncherCore/commands/WindowVerb.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/platform/WindowList.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AppCatalog;
class Diagnostics;
class WindowControl;

/// An application that runs and can be quit by name.
struct QuittableApp {
    std::string name;
    RunningApp app;

    bool operator==(const QuittableApp&) const = default;
};

/// Moves the window that the user came from, and quits applications. Main thread only.
class WindowManager {
public:
    struct Services {
        WindowControl& control;
        WindowList& windows;
        RunningApps& running;
        const AppCatalog& catalog;
        Diagnostics& diagnostics;
    };

    enum class Force { no, yes };

    explicit WindowManager(Services services) : services_(services) {}

    /// Moves `target`, or the window in front where that is gone. False when nothing was moved,
    /// which is logged.
    bool apply(WindowVerb verb, const std::optional<AppWindow>& target);

    /// Those whose name holds the query, whatever the case, by name.
    std::vector<QuittableApp> runningApps(std::string_view query) const;

    /// Asks all windows of the application to close, or ends its program at once.
    void quit(const QuittableApp& app, Force force);

private:
    Services services_;
};

} // namespace tessarine
