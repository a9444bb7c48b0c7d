#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/ProgramReader.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AppCatalog;
class AppLauncher;
class Diagnostics;
class FileOpener;
class MainQueue;

/// Runs commands: nothing here waits for a process, a link or an application, and what fails is
/// logged. Main thread only.
class CommandRuntime {
public:
    struct Services {
        MainQueue& queue;
        ProcessLauncher& processes;
        ProgramReader& programs;
        AppCatalog& catalog;
        AppLauncher& launcher;
        FileOpener& opener;
        Diagnostics& diagnostics;
    };

    enum class Activation { foreground, background };

    CommandRuntime(Services services, const Environment& environment);
    CommandRuntime(const CommandRuntime&) = delete;
    CommandRuntime& operator=(const CommandRuntime&) = delete;

    /// Who runs the kinds that have a service of their own; set while wiring.
    std::function<void(SystemAction action)> system;
    std::function<void(const CommandSpec& command, const std::string& argument)> jump;

    /// Does what the command says, with the argument in its place. Nothing happens for kinds that
    /// are lists of their own in the panel.
    void run(const CommandSpec& command, const std::string& argument);

    /// Opens addresses in their order: those of one application that follow each other in one go,
    /// and the next application's only when the one before has taken its own.
    void open(std::vector<std::string> urls, Activation activation);

    /// The address that a text stands for: a path, from "/" or "~", as a file's; nothing is guessed
    /// for a text without a scheme.
    std::optional<std::string> resolve(std::string_view text) const;

    void reveal(const std::vector<std::string>& urls);

    /// Runs a program text as `shell -c`; what it prints goes into the log when it ends.
    void runScript(const std::string& script,
                   const std::string& shell,
                   const std::string& argument,
                   const std::string& id);

    /// How a script is started, so that a list's is started alike.
    ProcessSpec scriptProcess(const std::string& script,
                              const std::string& shell,
                              const std::string& argument) const;

private:
    struct Opening;
    void openStep(const std::shared_ptr<Opening>& opening);

    Services services_;
    const Environment& environment_;
};

} // namespace tessarine
