#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProgramReader.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AppCatalog;
class Diagnostics;
class FileOpener;
class FileTypes;
class WorkQueues;
struct InstalledApp;

/// Runs commands: nothing here waits for a process, a link or an application, and what fails is
/// logged. Main thread only.
class CommandRuntime {
public:
    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        ProcessLauncher& processes;
        ProgramReader& programs;
        AppCatalog& catalog;
        AppLauncher& launcher;
        FileOpener& opener;
        const FileTypes& types;
        Diagnostics& diagnostics;
    };

    using Activation = AppLauncher::Activation;

    /// How long a disk may take to say what a file is before other links go ahead of it.
    static constexpr Seconds diskPatience{5};
    static constexpr std::size_t loggedOutput = 4000; ///< bytes of what a script printed

    /// Who runs a script that names no shell.
    static constexpr std::string_view usualShell = "/bin/bash";

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

    /// Runs a program text as `shell -c`; what it prints goes into the log when it ends. Inside it
    /// "$0" is "launcher", and "$1" and LAUNCHER_QUERY are the argument, which is never part of
    /// the text.
    void runScript(const std::string& script,
                   const std::string& shell,
                   const std::string& argument,
                   const std::string& id);

    /// How a script is started, so that a list's is started alike. Its PATH holds the system's
    /// folders, then what the user's own adds, then "~/.local/bin".
    ProcessSpec scriptProcess(const std::string& script,
                              const std::string& shell,
                              const std::string& argument) const;

private:
    struct Opening;
    std::vector<std::string> filledIn(const CommandSpec& command,
                                      const std::vector<std::string>& templates,
                                      const std::string& argument) const;
    void launchApp(const CommandSpec& command);
    const InstalledApp* installedApp(const std::string& path) const;
    void openFiles(const std::shared_ptr<Opening>& opening, const std::vector<std::string>& paths);
    void group(Opening& opening) const;
    void openStep(const std::shared_ptr<Opening>& opening);
    void logHold(const Opening& opening, Seconds since) const;

    Services services_;
    const Environment& environment_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
