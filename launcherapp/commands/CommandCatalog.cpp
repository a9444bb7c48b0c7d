#include "launcherapp/commands/CommandCatalog.h"

#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/SystemCommands.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessarine {

CommandCatalog::CommandCatalog(CommandStore& store, SystemCommands& system, CommandHotkeys& hotkeys)
    : store_(store), system_(system), hotkeys_(hotkeys) {
    sources_.push_back(store_.onChange([this] { rebuild(); }));
    sources_.push_back(system_.onChange([this] { rebuild(); }));
    sources_.push_back(hotkeys_.onChange([this] { rebuild(); }));
    rebuild();
}

bool CommandCatalog::isUsers(std::string_view id) const {
    const auto& users = store_.file().commands;
    return !store_.lastLoad() || std::ranges::find(users, id, &CommandSpec::id) != users.end();
}

std::optional<std::string> CommandCatalog::detail(const CommandSpec& command) const {
    if (const auto trouble = troubles_.find(command.id); trouble != troubles_.end())
        return trouble->second;
    if (command.kind == CommandKind::system && command.action)
        return system_.subtitle(*command.action);
    return std::nullopt;
}

void CommandCatalog::rebuild() {
    const auto& users = store_.file().commands;
    all_ = system_.inheriting(users);
    std::ranges::move(system_.available(users), std::back_inserter(all_));
    findTroubles();
    changes_.tell();
}

/// The first that is found of a command is shown: a mistake in it, a claim of another's, a hotkey
/// that could not be had.
void CommandCatalog::findTroubles() {
    troubles_.clear();
    const auto& file = store_.file();
    for (const auto& command : file.commands) {
        for (auto& mistake : command.problems()) {
            // A function key needs none, whatever the rule for the others says.
            if (mistake.ends_with("needs a modifier (cmd, alt, ctrl or shift)") &&
                hotkeys_.registered().contains(command.id))
                continue;
            troubles_.emplace(command.id, std::move(mistake));
            break;
        }
    }
    for (auto& duplicate : file.duplicates())
        troubles_.emplace(file.commands[duplicate.command].id, std::move(duplicate.problem));
    for (const auto& [id, reason] : hotkeys_.failed())
        troubles_.emplace(id, reason);
}

} // namespace tessarine
