#pragma once

#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "launcherapp/hotkeys/HotkeyNames.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tessarine {

class Diagnostics;
class Hotkey;
class UsageStore;

/// The global hotkeys of the user's commands. Main thread only.
class CommandHotkeys {
public:
    struct Services {
        /// Null where no chord can be had: without a display, or before there is one.
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

    /// Lets go of every chord and takes those of these commands, in their order.
    void sync(const std::vector<CommandSpec>& commands);

    /// As a press of the command's hotkey: the use counts, and a command that takes an argument
    /// gets the panel to type it into.
    void fire(const CommandSpec& command);

    const std::map<std::string, Chord>& registered() const { return registered_; }

    /// By the command's id, the reason in words.
    const std::map<std::string, std::string>& failed() const { return failed_; }

private:
    void take(const CommandSpec& command);
    void log();

    Services services_;
    Actions actions_;
    std::map<std::string, Chord> registered_;
    std::map<std::string, std::string> failed_;
    std::vector<std::uint32_t> ids_;
    std::uint32_t nextID_ = HotkeyIDs::firstCommand;
};

} // namespace tessarine
