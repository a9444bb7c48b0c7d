#include "launcherapp/commands/DemonstrationCommands.h"

namespace tessarine {

std::vector<CommandSpec> demonstrationCommands() {
    return {{.id = "tickets",
             .name = "Search the tickets",
             .keyword = "t",
             .kind = CommandKind::search,
             .url = "https://tickets.example/?q={query}"},
            {.id = "standup",
             .name = "Open the morning's pages",
             .keyword = "standup",
             .kind = CommandKind::open,
             .urls = {{"https://board.example", "https://mail.example"}},
             .hotkey = "ctrl+alt+m"},
            {.id = "note",
             .name = "Add a note",
             .keyword = "note",
             .kind = CommandKind::script,
             .script = "echo \"$1\" >> ~/notes.txt"},
            {.id = "pdf",
             .name = "Find a PDF",
             .keyword = "p",
             .kind = CommandKind::files,
             .extensions = {{"pdf"}},
             .icon = "doc.richtext"},
            {.id = "lock",
             .name = "Lock screen (sleep display)",
             .keyword = "lock",
             .kind = CommandKind::system,
             .action = SystemAction::lockScreen,
             .icon = "lock"}};
}

} // namespace tessarine
