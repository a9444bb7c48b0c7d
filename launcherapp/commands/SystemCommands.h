#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

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
class SystemEffects;
class WindowManager;
class WorkQueues;

/// The everyday actions of the machine and the panes of the desktop's settings, as commands that
/// every user has. Main thread only.
class SystemCommands {
public:
    struct Services {
        WorkQueues& work;
        AppCatalog& catalog;
        Prefs& prefs;
        SystemEffects& effects;
        WindowManager& windows;
        Alerts& alerts;
        Diagnostics& diagnostics;
    };

    explicit SystemCommands(Services services);
    ~SystemCommands();
    SystemCommands(const SystemCommands&) = delete;
    SystemCommands& operator=(const SystemCommands&) = delete;

    /// Looks for the settings panes, and what this desktop can do, in the background. Once.
    void start();

    /// The commands offered beside the user's own: one that the user has too is left out, and its
    /// words are in the copy of the user's own that `inheriting` gives.
    std::vector<CommandSpec> available(std::span<const CommandSpec> userCommands) const;

    /// What a row of the action says: what it does, or why this desktop can't.
    std::string subtitle(SystemAction action) const;

    /// Does the action, after a question for those that ask first. A failure is logged and told.
    void run(SystemAction action);

    /// Calls `changed` after the panes, or what the desktop can do, are others.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    Services services_;
    std::vector<CommandSpec> panes_;
    Observers<> changes_;
    std::vector<Subscription> watches_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
