#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/commands/LinkOpener.h"
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

class ActivationTokens;
class AppCatalog;
class Diagnostics;
class FileOpener;

/// One run of a program text, as `shell -c` has it.
struct Script {
    std::string text;
    std::optional<std::string> shell; ///< nothing, or none at all, means CommandRuntime::usualShell
    std::string argument;
    std::string name; ///< what to call it in the log, and to the session's process manager
};

/// Runs commands: nothing here waits for a process, a link or an application, but for a token of
/// the desktop's 100 ms at most, and what fails is logged. Main thread only.
class CommandRuntime {
public:
    struct Services {
        MainQueue& queue;
        ProcessLauncher& processes;
        ProgramReader& programs;
        ActivationTokens& tokens;
        AppCatalog& catalog;
        FileOpener& opener;
        LinkOpener& links;
        Diagnostics& diagnostics;
    };

    using Activation = LinkOpener::Activation;

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

    /// As `LinkOpener::open`.
    void open(std::vector<std::string> urls, Activation activation);

    /// The address that a text stands for: a path, from "/" or "~", as a file's; nothing is guessed
    /// for a text without a scheme.
    std::optional<std::string> resolve(std::string_view text) const;

    /// Shows files in their folders; an address that is no file's is logged.
    void reveal(const std::vector<std::string>& urls);

    /// Runs a script that the user asked for; what it prints goes into the log when it ends. Inside
    /// it "$0" is "launcher", and "$1" and LAUNCHER_QUERY are the argument, which is never part of
    /// the text. A window that it opens may come to the front.
    void runScript(const Script& script);

    /// How a script is started that opens no windows, so that a list's is started alike. Its PATH
    /// holds the user's own folders, as a terminal has them, then those of the system's that these
    /// lack, then
    /// "~/.local/bin".
    ProcessSpec scriptProcess(const Script& script) const;

    /// Whether what it started was handed over, or failed: links and applications, for nothing
    /// else is waited for.
    bool isSettled() const { return launching_ == 0 && services_.links.isSettled(); }

private:
    std::vector<std::string> filledIn(const CommandSpec& command,
                                      const std::vector<std::string>& templates,
                                      const std::string& argument) const;
    void launchApp(const CommandSpec& command);

    Services services_;
    const Environment& environment_;
    std::size_t launching_ = 0;                              ///< applications
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
