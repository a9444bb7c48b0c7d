#include "LauncherCore/commands/BuiltinCommands.h"

#include "LauncherCore/commands/CommandWords.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

struct Builtin {
    std::string_view id;
    std::string_view name;
    std::string_view symbol;
    SystemAction action;
    std::string_view words; ///< commas between
};

/// A word that is typed whole stands above an application of that very name, so none here is what
/// people call an application they start: "restart nautilus", and not "nautilus".
constexpr auto table = std::to_array<Builtin>({
    {"sys.restart",
     "Restart",
     "arrow.clockwise.circle",
     SystemAction::restart,
     "reboot,restart computer,restart machine"},
    {"sys.restartNow",
     "Restart immediately",
     "arrow.clockwise.circle.fill",
     SystemAction::restartImmediately,
     "restart now,reboot immediately,reboot now"},
    {"sys.shutdown",
     "Shut Down",
     "power",
     SystemAction::shutDown,
     "shutdown,power off,poweroff,turn off,turn off computer"},
    {"sys.shutdownNow",
     "Shut Down immediately",
     "power.circle.fill",
     SystemAction::shutDownImmediately,
     "shutdown immediately,shutdown now,shut down now,power off immediately,power off now"},
    {"sys.logout",
     "Log Out",
     "rectangle.portrait.and.arrow.right",
     SystemAction::logOut,
     "logout,log off,logoff,sign out,end session"},
    {"sys.logoutNow",
     "Log Out immediately",
     "rectangle.portrait.and.arrow.right.fill",
     SystemAction::logOutImmediately,
     "logout immediately,logout now,log out now,log off now,sign out now"},
    {"sys.lock",
     "Lock Screen",
     "lock",
     SystemAction::lockScreen,
     "lock,lock computer,lock session,lockscreen"},
    {"sys.sleep", "Sleep", "moon", SystemAction::sleep, "suspend,standby,stand by"},
    {"sys.sleepDisplays",
     "Sleep Displays",
     "display",
     SystemAction::sleepDisplays,
     "sleep display,turn off screen,turn off display,turn off monitor,screen off,display off,"
     "monitor off,blank screen"},
    {"sys.screenSaver",
     "Start Screen Saver",
     "sparkles.tv",
     SystemAction::screenSaver,
     "screen saver,screensaver,start screensaver"},
    {"sys.emptyTrash",
     "Empty Trash",
     "trash",
     SystemAction::emptyTrash,
     "empty bin,empty rubbish bin,empty recycle bin,empty wastebasket,clear trash"},
    {"sys.showTrash",
     "Show Trash",
     "trash.circle",
     SystemAction::showTrash,
     "trash,open trash,bin,show bin,open bin,recycle bin,wastebasket"},
    {"sys.eject",
     "Eject All Disks",
     "eject",
     SystemAction::eject,
     "eject,eject all,eject drives,eject disks,eject usb,unmount,safely remove"},
    {"sys.quitAll",
     "Quit All Apps",
     "xmark.circle",
     SystemAction::quitAll,
     "close everything,quit everything,close all apps,close all windows,quit all applications"},
    {"sys.forceQuit",
     "Force Quit Apps",
     "exclamationmark.octagon",
     SystemAction::forceQuitDialog,
     "force quit,force quit an app,kill an app,end task,task manager,app not responding"},
    {"sys.darkMode",
     "Toggle Dark Mode",
     "circle.lefthalf.filled",
     SystemAction::toggleDarkMode,
     "toggle dark mode,toggle appearance,switch appearance,switch dark mode,toggle theme,"
     "toggle light mode"},
    {"sys.darkOn",
     "Dark Mode",
     "moon.circle",
     SystemAction::darkMode,
     "dark appearance,appearance dark,dark theme,night mode"},
    {"sys.lightOn",
     "Light Mode",
     "sun.max.circle",
     SystemAction::lightMode,
     "light appearance,appearance light,light theme,day mode"},
    {"sys.autoAppearance",
     "Auto Appearance",
     "circle.righthalf.filled",
     SystemAction::autoAppearance,
     "automatic appearance,appearance auto,appearance automatic,auto dark mode,"
     "automatic dark mode"},
    {"sys.timeHomeHere",
     "Time Zones: Home Is This Mac",
     "airplane",
     SystemAction::timeHomeHere,
     "home time zone here,time zone home here,time zones home here,home is here,"
     "home is this computer,travelling"},
    {"sys.timeHomeClocks",
     "Time Zones: Home Is My First Clock",
     "house",
     SystemAction::timeHomeClocks,
     "time zone home clocks,time zones home clocks,home time zone clocks,home is my first clock"},
    {"sys.hiddenFiles",
     "Show or Hide Hidden Files",
     "arrow.triangle.2.circlepath",
     SystemAction::toggleHiddenFiles,
     "show hidden files,hide hidden files,toggle hidden files,hidden files,dot files,dotfiles"},
    {"sys.restartFinder",
     "Restart Finder",
     "arrow.triangle.2.circlepath",
     SystemAction::restartFinder,
     "restart file manager,restart files,restart nautilus,restart dolphin,restart thunar,"
     "restart nemo,restart caja,restart pcmanfm,relaunch finder"},
    {"sys.restartDock",
     "Restart Dock",
     "arrow.triangle.2.circlepath",
     SystemAction::restartDock,
     "restart panel,restart shell,restart taskbar,restart gnome shell,restart plasma,"
     "restart plasmashell,restart desktop,relaunch dock"},
    {"sys.fixWispr",
     "Fix Wispr Flow",
     "mic.fill",
     SystemAction::fixWispr,
     "restart wispr flow,wispr flow,fix dictation"},
    {"sys.shotSelection",
     "Screenshot a Selection",
     "camera.viewfinder",
     SystemAction::screenshotSelection,
     "screenshot selection,selection screenshot,screenshot area,screenshot region,"
     "capture selection,print screen"},
    {"sys.shotWindow",
     "Screenshot a Window",
     "macwindow.badge.plus",
     SystemAction::screenshotWindow,
     "window screenshot,screenshot window,capture window"},
});

std::vector<CommandSpec> makeActions() {
    std::vector<CommandSpec> commands;
    commands.reserve(table.size());
    for (const auto& row : table)
        commands.push_back({.id = std::string(row.id),
                            .name = std::string(row.name),
                            .kind = CommandKind::system,
                            .action = row.action,
                            .aliases = CommandWords::listed(row.words),
                            .icon = std::string(row.symbol)});
    return commands;
}

/// Nothing for a command that does no action, whatever it names as one.
std::optional<SystemAction> actionOf(const CommandSpec& command) {
    return command.kind == CommandKind::system ? command.action : std::nullopt;
}

void inherit(CommandSpec& command, const CommandSpec& builtIn) {
    CommandWords::Unique inherited;
    inherited.know(command.name);
    inherited.know(command.keyword.value_or(""));
    auto words = command.aliases.value_or(std::vector<std::string>{});
    for (const auto& word : words)
        inherited.know(word);
    inherited.add(builtIn.name);
    for (const auto& word : builtIn.aliases.value_or(std::vector<std::string>{}))
        inherited.add(word);
    words.insert(words.end(), inherited.words().begin(), inherited.words().end());
    command.aliases = std::move(words);
}

} // namespace

const std::vector<CommandSpec>& BuiltinCommands::actions() {
    static const auto commands = makeActions();
    return commands;
}

CommandSpec BuiltinCommands::settings(const std::string& entryPath) {
    return {.id = std::string(settingsID),
            .name = "System Settings",
            .kind = CommandKind::app,
            .path = entryPath,
            .aliases = {{"system preferences", "control center", "control centre"}},
            .icon = "gearshape.fill"};
}

std::vector<CommandSpec> BuiltinCommands::available(std::span<const CommandSpec> builtIns,
                                                    std::span<const CommandSpec> userCommands) {
    const auto isShadowed = [&](const CommandSpec& builtIn) {
        const auto action = actionOf(builtIn);
        return action && std::ranges::find(userCommands, action, actionOf) != userCommands.end();
    };
    std::vector<CommandSpec> result;
    std::ranges::remove_copy_if(builtIns, std::back_inserter(result), isShadowed);
    return result;
}

std::vector<CommandSpec> BuiltinCommands::inheriting(std::span<const CommandSpec> builtIns,
                                                     std::span<const CommandSpec> userCommands) {
    std::vector<CommandSpec> result(userCommands.begin(), userCommands.end());
    for (auto& command : result) {
        const auto action = actionOf(command);
        if (!action)
            continue;
        const auto shadowed = std::ranges::find(builtIns, action, actionOf);
        if (shadowed != builtIns.end())
            inherit(command, *shadowed);
    }
    return result;
}

} // namespace tessarine
