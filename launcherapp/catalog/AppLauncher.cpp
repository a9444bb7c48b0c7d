#include "launcherapp/catalog/AppLauncher.h"

#include "LauncherCore/catalog/LaunchPlan.h"

#include <memory>
#include <utility>

namespace tessarine {

/// What is left to try once the bus has failed, or from the start.
struct AppLauncher::Attempt {
    LaunchPlan plan;
    std::string name;                 ///< for the session's process manager
    std::optional<std::string> token; ///< nothing where the desktop gives none
    Activation activation = Activation::foreground;
};

AppLauncher::AppLauncher(MainQueue& queue,
                         ProcessLauncher& processes,
                         ApplicationBus& bus,
                         ActivationTokens& tokens,
                         const Environment& environment)
    : queue_(queue), processes_(processes), bus_(bus), tokens_(tokens),
      terminalVariable_(environment.terminal) {}

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
                          .token = tokens_.take(activation),
                          .activation = activation};
    if (!attempt.plan.busName) {
        queue_.post([this, attempt, done = std::move(done)] { done(startCommands(attempt)); });
        return;
    }
    bus_.activate({.busName = *attempt.plan.busName,
                   .uris = attempt.plan.uris,
                   .activationToken = attempt.token.value_or("")},
                  busTimeout,
                  [this, attempt, asked = queue_.uptime(), done = std::move(done)](
                      std::optional<std::string> problem) {
                      if (problem && !attempt.plan.commands.empty()) {
                          auto next = attempt;
                          // Whoever is late with the answer may have used its token.
                          if (queue_.uptime() - asked >= busTimeout)
                              next.token = tokens_.take(next.activation);
                          problem = startCommands(next);
                      }
                      done(std::move(problem));
                  });
}

std::optional<std::string> AppLauncher::startCommands(const Attempt& attempt) {
    if (!attempt.plan.problem.empty())
        return attempt.plan.problem;
    ProcessSpec spec{.environment = activationVariables(attempt.token),
                     .workingDirectory = attempt.plan.workingDirectory,
                     .name = attempt.name};
    std::optional<std::string> problem;
    for (const auto& command : attempt.plan.commands) {
        spec.arguments = command;
        try {
            processes_.startDetached(spec);
            if (attempt.activation == Activation::foreground)
                spec.environment.clear(); // such a token is good for one program
        } catch (const ProcessError& error) {
            if (!problem)
                problem = error.what();
        }
    }
    return problem;
}

} // namespace tessarine
