#pragma once

#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/hotkeys/HotkeyNames.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

class Diagnostics;
class Hotkey;
class UsageStore;

/// The global hotkeys of the user's commands. Main thread only.
class CommandHotkeys {
public:
    struct Services {
        /// Null where no chord can be had, without a display. Empty for a run that takes none.
        std::function<Hotkey*()> hotkey;
        UsageStore& usage;
        Diagnostics& diagnostics;
    };

    /// What a hotkey does with its command.
    struct Actions {
        std::function<void(const std::string& query)> showPanel; ///< with the query typed
        std::function<void(const CommandSpec& command)> run;
    };

    CommandHotkeys(Services services, Actions actions);
    ~CommandHotkeys();
    CommandHotkeys(const CommandHotkeys&) = delete;
    CommandHotkeys& operator=(const CommandHotkeys&) = delete;

    /// Lets go of every chord and takes those of these commands, in their order.
    void sync(const std::vector<CommandSpec>& commands);

    /// As a press of the command's hotkey: the use counts, and a command that takes an argument
    /// gets the panel to type it into.
    void fire(const CommandSpec& command);

    const std::map<std::string, Chord>& registered() const { return registered_; }

    /// By the command's id, the reason in words; also of those that the desktop's user has yet to
    /// allow.
    const std::map<std::string, std::string>& failed() const { return failed_; }

    /// Calls `changed` after a chord was lost, or came back, without a `sync`.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    /// A chord that was taken.
    struct Taken {
        std::uint32_t id = 0;
        std::string command; ///< its id
        Chord chord;
    };

    void letGo();
    void take(const CommandSpec& command);
    void refresh();
    std::string reason(const Chord& chord, std::uint32_t id) const;
    bool isWaiting(const std::string& command) const;
    void log();

    Services services_;
    Actions actions_;
    std::map<std::string, Chord> registered_;
    std::map<std::string, std::string> failed_;
    std::vector<Taken> taken_;
    std::uint32_t nextID_ = HotkeyIDs::firstCommand;
    bool isSyncing_ = false;
    bool hasToldOfWaiting_ = false; ///< in the log, and of no answer since
    Subscription statuses_;
    Observers<> changes_;
};

} // namespace tessarine
