#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/commands/WindowVerb.h"
#include "launcherapp/commands/QuittableApp.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/MainQueue.h"
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

/// Moves the window that the user came from, and quits applications. It is a client of what
/// desktops call their window manager, and no such thing itself. Main thread only.
class WindowManager {
public:
    struct Services {
        MainQueue& queue;
        WindowControl& control;
        WindowList& windows;
        RunningApps& running;
        const AppCatalog& catalog;
        Diagnostics& diagnostics;
    };

    enum class Force { no, yes };

    explicit WindowManager(Services services) : services_(services) {}

    /// Whether `apply` could move something. Where the desktop doesn't tell all its windows, only
    /// one that was recorded can be moved: the one in front may be another. Asks nobody while it
    /// can: it is called for each keystroke.
    Ability ability(const std::optional<AppWindow>& target) const;

    /// Moves `target`; where that has gone, the newest other window of its application, a minimised
    /// one last; and where the application has ended, the window in front. Never a window of this
    /// program. False when nothing was moved, which is logged. Waits for the display, and for
    /// `WindowControl::longestRestore` at most where the window is minimised or maximised.
    bool apply(WindowVerb verb, const std::optional<AppWindow>& target);

    /// Those with a row of their own and ordinary windows that are theirs with that certainty,
    /// whose name holds the query, whatever the case; by name, and by id of one name. This program
    /// is not among them. Asks the display each time.
    std::vector<QuittableApp> runningApps(std::string_view query,
                                          Certainty certainty = Certainty::sure) const;

    /// What keystrokes are answered with: all of `runningApps`, whether the desktop tells them, and
    /// whether it lets them be ended by force, as it was `AppCatalog::runningLifetime` ago at most.
    struct Offer {
        Ability ability;
        Ability killing;
        std::vector<QuittableApp> apps;
    };

    const Offer& offer();

    /// Asks the windows that are the application's with that certainty to close, or ends the
    /// programs of those that surely are. A program may go on without a window. Nothing happens
    /// when it runs no more.
    void quit(const QuittableApp& app, Force force, Certainty certainty = Certainty::sure);

private:
    std::optional<AppWindow> chosen(const std::optional<AppWindow>& target) const;
    std::optional<AppWindow> windowOfApplication(const AppWindow& recorded) const;
    std::string nameOf(const AppWindow& window) const;

    Services services_;
    Offer offer_;
    std::optional<Seconds> offeredAt_;
};

} // namespace tessarine
