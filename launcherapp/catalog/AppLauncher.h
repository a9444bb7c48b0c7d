#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "launcherapp/platform/ActivationTokens.h"
#include "launcherapp/platform/ApplicationBus.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProcessLauncher.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// Starts applications from their desktop entries, over the session bus where they ask for it and
/// by their Exec key otherwise. What it starts lives on when the launcher ends. Main thread only.
class AppLauncher {
public:
    /// How long an application may take to answer on the bus before its Exec key is used.
    static constexpr Seconds busTimeout{5.0};

    using Activation = tessarine::Activation;

    AppLauncher(MainQueue& queue,
                ProcessLauncher& processes,
                ApplicationBus& bus,
                ActivationTokens& tokens,
                const Environment& environment);

    /// Starts `application`, opening `uris` (file URIs and URLs; none just starts it). `done` is
    /// called once, later, with nothing on success, else with the problem in words. Its window
    /// comes to the front by the token that was prepared before the panel went away.
    void launch(const InstalledApp& application,
                const std::vector<std::string>& uris,
                std::function<void(std::optional<std::string> problem)> done,
                Activation activation = Activation::foreground);

private:
    struct Attempt;
    std::optional<std::string> startCommands(const Attempt& attempt);

    MainQueue& queue_;
    ProcessLauncher& processes_;
    ApplicationBus& bus_;
    ActivationTokens& tokens_;
    std::string terminalVariable_;
};

} // namespace tessarine
