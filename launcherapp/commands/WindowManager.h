#pragma once

#include "LauncherCore/commands/WindowVerb.h"
#include "launcherapp/commands/QuittableApp.h"
#include "launcherapp/platform/WindowList.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AppCatalog;
class Diagnostics;
class RunningApps;
class WindowControl;

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

    /// Moves `target`; where that has gone, the newest other window of its application that isn't
    /// minimised; and where there is none, the window in front. False when nothing was moved,
    /// which is logged. Waits for the display: a few milliseconds, or
    /// `WindowControl::longestRestore` where the window is maximised.
    bool apply(WindowVerb verb, const std::optional<AppWindow>& target);

    /// Those with ordinary windows whose name holds the query, whatever the case, by name. This
    /// program is not among them. Asks the display each time.
    std::vector<QuittableApp> runningApps(std::string_view query) const;

    /// Asks all windows of the application to close, or ends its program at once. Nothing happens
    /// when it runs no more.
    void quit(const QuittableApp& app, Force force);

private:
    std::optional<AppWindow> chosen(const std::optional<AppWindow>& target) const;
    std::optional<AppWindow> newestOfApplication(const AppWindow& gone,
                                                 const std::vector<AppWindow>& windows) const;
    std::string nameOf(const AppWindow& window) const;

    Services services_;
};

} // namespace tessarine
