#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

class CommandHotkeys;
class CommandStore;
class SystemCommands;

/// All the commands that the panel offers, the user's own and the machine's, put together once for
/// each change and not for each keystroke. Main thread only.
class CommandCatalog {
public:
    CommandCatalog(CommandStore& store, SystemCommands& system, CommandHotkeys& hotkeys);
    CommandCatalog(const CommandCatalog&) = delete;
    CommandCatalog& operator=(const CommandCatalog&) = delete;

    /// The user's own, then the machine's; valid until the next change.
    std::span<const CommandSpec> all() const { return all_; }

    /// Whether the user's file has a command of this id. Before it was read, any may be the user's.
    bool isUsers(std::string_view id) const;

    /// What a command's row says: what keeps the command or its hotkey from working, what an action
    /// of the machine does, or why this desktop can't. Nothing for any other.
    std::optional<std::string> detail(const CommandSpec& command) const;

    /// Calls `changed` after the commands, or what their rows say, are others.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    void rebuild();
    void findTroubles();

    CommandStore& store_;
    SystemCommands& system_;
    CommandHotkeys& hotkeys_;
    std::vector<CommandSpec> all_;
    std::map<std::string, std::string> troubles_; ///< of the user's own, by id
    Observers<> changes_;
    std::vector<Subscription> sources_;
};

} // namespace tessarine
