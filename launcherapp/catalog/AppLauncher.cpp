#include "launcherapp/catalog/AppLauncher.h"

#include "LauncherCore/catalog/LaunchPlan.h"

#include <fmt/format.h>

#include <memory>
#include <utility>

namespace tessarine {

/// What is left to try once the bus has failed, or from the start.
struct AppLauncher::Attempt {
    LaunchPlan plan;
    std::string name;      ///< for the session's process manager
    std::string startupID; ///< empty where windows can't be told by one
};

AppLauncher::AppLauncher(MainQueue& queue,
                         ProcessLauncher& processes,
                         ApplicationBus& bus,
                         const Environment& environment)
    : queue_(queue), processes_(processes), bus_(bus), terminalVariable_(environment.terminal),
      hasX11_(environment.hasX11) {}

void AppLauncher::launch(const InstalledApp& application,
                         const std::vector<std::string>& uris,
                         std::function<void(std::optional<std::string>)> done,
                         Activation activation) {
    std::vector<std::string> terminal;
    if (application.terminal)
        terminal = LaunchPlans::terminalWords(terminalVariable_, [this](std::string_view program) {
            return processes_.executable(program);
        });
    const Attempt attempt{.plan = LaunchPlans::plan(application, uris, terminal),
                          .name = application.bundleID,
                          .startupID = nextStartupID(activation)};
    if (!attempt.plan.busName) {
        queue_.post([this, attempt, done = std::move(done)] { done(startCommands(attempt)); });
        return;
    }
    bus_.activate({.busName = *attempt.plan.busName,
                   .uris = attempt.plan.uris,
                   .activationToken = attempt.startupID},
                  busTimeout,
                  [this, attempt, done = std::move(done)](std::optional<std::string> problem) {
                      if (problem && !attempt.plan.commands.empty())
                          problem = startCommands(attempt);
                      done(std::move(problem));
                  });
}

std::optional<std::string> AppLauncher::startCommands(const Attempt& attempt) {
    if (!attempt.plan.problem.empty())
        return attempt.plan.problem;
    ProcessSpec spec{.workingDirectory = attempt.plan.workingDirectory, .name = attempt.name};
    if (!attempt.startupID.empty())
        spec.environment["DESKTOP_STARTUP_ID"] = attempt.startupID;
    std::optional<std::string> problem;
    for (const auto& command : attempt.plan.commands) {
        spec.arguments = command;
        try {
            processes_.startDetached(spec);
        } catch (const ProcessError& error) {
            if (!problem)
                problem = error.what();
        }
    }
    return problem;
}

std::string AppLauncher::nextStartupID(Activation activation) {
    if (!hasX11_)
        return {};
    // The time tells the window manager that the user asked just now, so that the window may take
    // the focus; zero that it may not. X servers count it in milliseconds of the same clock.
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(queue_.uptime()).count();
    const auto serverTime =
        activation == Activation::foreground ? static_cast<std::uint32_t>(milliseconds) : 0;
    return fmt::format("tessarine-{}-{}_TIME{}", milliseconds, ++launches_, serverTime);
}

} // namespace tessarine
