#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WindowList.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// An application with windows on the desktop.
struct RunningApp {
    std::string bundleID;
    std::vector<std::uint64_t> windows; ///< its ordinary windows, oldest first
    std::vector<std::uint64_t> hidden;  ///< those of them that are minimised
    /// Those that have them, each once, as far as the desktop tells them. Other applications may
    /// have windows of the same process.
    std::vector<std::int64_t> processes;

    bool operator==(const RunningApp&) const = default;
};

/// Running applications by their desktop-file ids: the desktop's windows matched to the installed
/// applications. Windows that no installed application owns are left out. Main thread only.
class RunningApps {
public:
    explicit RunningApps(WindowList& windows);

    /// What to match windows to; called with every published scan. Drops nothing else.
    void useRegistry(std::shared_ptr<const AppRegistry> registry);

    Ability ability() const;

    /// In the order of each application's oldest window. Asks the display each time.
    std::vector<RunningApp> running(Certainty certainty = Certainty::likely) const;

    /// The one application; nothing when it has no ordinary window.
    std::optional<RunningApp> running(const std::string& bundleID,
                                      Certainty certainty = Certainty::likely) const;

    /// The id of the application in front; nothing when none is, or none that is installed.
    std::optional<std::string> frontmost() const;

    /// Calls `activated` with the id of each installed application that comes to the front.
    Subscription onActivated(std::function<void(const std::string& bundleID)> activated);

    /// Calls `changed` after applications may have come or gone, as far as the desktop tells that
    /// unasked.
    Subscription onChanged(std::function<void()> changed);

    void unhide(const RunningApp& app);

    /// Brings the newest of its windows forward.
    void activate(const RunningApp& app);

    /// The id of the application whose window it is, also when the window has gone; nothing for
    /// one that is not installed.
    std::optional<std::string> owner(const AppWindow& window,
                                     Certainty certainty = Certainty::likely) const;

private:
    WindowList& windows_;
    std::shared_ptr<const AppRegistry> registry_;
};

} // namespace tessarine
