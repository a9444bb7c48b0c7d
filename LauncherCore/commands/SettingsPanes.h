#pragma once

#include "LauncherCore/catalog/DesktopEntry.h"
#include "LauncherCore/catalog/Launchable.h"
#include "LauncherCore/commands/CommandSpec.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The pages of a desktop's settings. A control centre ships a desktop entry for each, which starts
/// it with the page's name. Pure; any thread.
namespace tessarine::SettingsPanes {

inline constexpr std::string_view idPrefix = "sys.pane.";

/// What a pane's row shows, whatever its entry calls itself.
struct PaneName {
    std::string_view entryID; ///< desktop-file id without ".desktop"
    std::string_view name;
    std::string_view words; ///< that find it besides its name; commas between
};

/// The panes that are known by name, those of one desktop together.
std::span<const PaneName> paneNames();

/// Whether an Exec key, its string escapes read, starts a control centre at one of its pages: what
/// tells panes from all other entries, the control centres' own included.
bool opensPage(std::string_view exec);

/// An entry as it was found.
struct Found {
    std::string entryID; ///< desktop-file id without ".desktop"
    std::string path;
    DesktopEntry entry;
};

/// The command that opens the pane: of kind `app`, with the entry as its application, so that the
/// pane opens by its own Exec key and shows its own icon. It is called as `paneNames` has it, else
/// by the entry's name in the reader's language, and also found by the entry's own names.
///
/// Nothing for an entry that is no pane, isn't meant for this session's desktop, or whose control
/// centre isn't installed. A centre that says it is for one desktop alone refuses to run on others.
std::optional<CommandSpec> command(const Found& found,
                                   std::span<const std::string> languages,
                                   const Launchable::Session& session);

} // namespace tessarine::SettingsPanes
