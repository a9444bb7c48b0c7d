#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "launcherapp/platform/ApplicationBus.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProcessLauncher.h"

#include <cstdint>
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

    /// Whether what starts is to come to the front.
    enum class Activation { foreground, background };

    AppLauncher(MainQueue& queue,
                ProcessLauncher& processes,
                ApplicationBus& bus,
                const Environment& environment);

    /// Starts `application`, opening `uris` (file URIs and URLs; none just starts it). `done` is
    /// called once, later, with nothing on success, else with the problem in words.
    void launch(const InstalledApp& application,
                const std::vector<std::string>& uris,
                std::function<void(std::optional<std::string> problem)> done,
                Activation activation = Activation::foreground);

private:
    struct Attempt;
    std::optional<std::string> startCommands(const Attempt& attempt);
    std::string nextStartupID(Activation activation);

    MainQueue& queue_;
    ProcessLauncher& processes_;
    ApplicationBus& bus_;
    std::string terminalVariable_;
    bool hasX11_;
    std::uint64_t launches_ = 0;
};

} // namespace tessarine
