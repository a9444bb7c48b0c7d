#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/commands/ClosingWindows.h"
#include "launcherapp/commands/SettingsPaneScan.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tessarine {

class Alerts;
class AppCatalog;
class Diagnostics;
class Prefs;
class RunningApps;
class SystemEffects;
class WorkQueues;

/// The everyday actions of the machine and the panes of the desktop's settings, as commands that
/// every user has. Main thread only.
class SystemCommands {
public:
    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        const FileStore& files;
        AppCatalog& catalog;
        const RunningApps& running;
        Prefs& prefs;
        SystemEffects& effects;
        Alerts& alerts;
        Diagnostics& diagnostics;
        /// As in ClosingWindows.
        std::function<std::vector<OpenWindow>()> openWindows;
        std::function<void(std::uint64_t window)> closeWindow;
        std::function<void(const std::string& query)> showPanel; ///< with the query typed
    };

    /// Called once, later, when an action is done or won't be: with nothing on success, else with
    /// why not, in words. Never when this object has gone.
    using Done = std::function<void(std::optional<std::string> problem)>;

    SystemCommands(Services services, const Environment& environment);
    SystemCommands(const SystemCommands&) = delete;
    SystemCommands& operator=(const SystemCommands&) = delete;

    /// Looks for the settings panes, and what this desktop can do, in the background: after the
    /// catalog's first scan, and after each later one. Once.
    void start();

    /// The commands offered beside the user's own: the actions, the desktop's settings where there
    /// are any, and their panes by name. One that the user has too is left out; see `inheriting`.
    std::vector<CommandSpec> available(std::span<const CommandSpec> userCommands) const;

    /// The user's commands, with the names and words of those that `available` leaves out for them.
    std::vector<CommandSpec> inheriting(std::span<const CommandSpec> userCommands) const;

    /// Whether this desktop can do it, and why not. Never waits.
    Ability ability(SystemAction action) const;

    /// What a row of the action says: what it does here, or why this desktop can't.
    std::string subtitle(SystemAction action) const;

    /// Does the action, after a question for those that ask first; a question takes back what an
    /// earlier one waits for. A failure is logged, and told where the user would take the action
    /// for done; so is an action that this desktop can't do.
    void run(SystemAction action, Done done = {});

    /// Calls `changed` after the panes were looked for, and when the desktop can do other things
    /// than before.
    Subscription onChange(std::function<void()> changed);

private:
    void scanPanes();
    void publish(SettingsPaneScan::Result scanned);
    void logOnce(std::string line);
    std::optional<CommandSpec> settingsCommand() const;
    std::optional<std::string> forceQuitQuery() const;
    const CommandSpec* appearancePane() const;
    void askFirst(SystemAction action, Done done);
    void confirmed(SystemAction action, Done done);
    void carryOut(SystemAction action, Done done);
    void perform(SystemAction action, SystemAction performed, Done done);
    void quitAll();
    void openPane(const CommandSpec& pane, Done done);
    void setTimeHome(SystemAction action);
    enum class Telling { ifItSeemsDone, always };
    void fail(SystemAction action, const std::string& problem, Telling telling);
    void finish(Done done, std::optional<std::string> problem);

    Services services_;
    const Environment& environment_;
    std::vector<CommandSpec> offered_; ///< without regard to the user's own
    std::uint64_t scans_ = 0;
    std::string lastLine_; ///< what was logged of the last scan
    Observers<> changes_;
    std::vector<Subscription> watches_;
    ClosingWindows closing_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
