#include "launcherapp/commands/CommandCatalog.h"

#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/SystemCommands.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessarine {

CommandCatalog::CommandCatalog(CommandStore& store,
                               SystemCommands& system,
                               const CommandHotkeys& hotkeys)
    : store_(store), system_(system), hotkeys_(hotkeys) {
    sources_.push_back(store_.onChange([this] { rebuild(); }));
    sources_.push_back(system_.onChange([this] { rebuild(); }));
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
    troubles_.clear();
    for (const auto& command : users) {
        const auto refused = hotkeys_.failed().find(command.id);
        if (auto mistakes = command.problems(); !mistakes.empty())
            troubles_.emplace(command.id, std::move(mistakes.front()));
        else if (refused != hotkeys_.failed().end())
            troubles_.emplace(command.id, refused->second);
    }
    changes_.tell();
}

} // namespace tessarine
