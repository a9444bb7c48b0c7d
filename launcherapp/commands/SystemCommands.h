#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/commands/QuittableApp.h"
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
        std::function<std::vector<QuittableApp>()> runningApps; ///< every one, by name
        std::function<void(const QuittableApp& app)> askToQuit;
        std::function<void(const std::string& query)> showPanel; ///< with the query typed
    };

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

    /// What a row of the action says: what it does, or why this desktop can't.
    std::string subtitle(SystemAction action) const;

    /// Does the action, after a question for those that ask first. A failure, and an action that
    /// this desktop can't do, is logged and told.
    void run(SystemAction action);

    /// Whether the panes have been looked for.
    bool hasScanned() const { return hasScanned_; }

    /// Calls `changed` after the panes were looked for, and when the desktop can do other things
    /// than before.
    Subscription onChange(std::function<void()> changed);

private:
    void scanPanes();
    void publish(SettingsPaneScan::Result scanned);
    void logOnce(std::string line);
    std::optional<CommandSpec> settingsCommand() const;
    std::optional<std::string> forceQuitQuery() const;
    void carryOut(SystemAction action);
    std::vector<QuittableApp> runningApps() const;
    void askToQuit(const std::vector<QuittableApp>& apps) const;
    void quitAll();
    void whenAllQuit(SystemAction action, Seconds deadline);
    void setTimeHome(SystemAction action);
    void fail(SystemAction action, const std::string& problem);

    Services services_;
    const Environment& environment_;
    std::vector<CommandSpec> offered_; ///< without regard to the user's own
    bool hasScanned_ = false;
    std::uint64_t scans_ = 0;
    std::string lastLine_; ///< what was logged of the last scan
    Observers<> changes_;
    std::vector<Subscription> watches_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
