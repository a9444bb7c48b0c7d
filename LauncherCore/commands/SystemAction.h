#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// What a system command does. The order is the one in which lists show them.
enum class SystemAction {
    eject,
    lockScreen,
    sleep,
    emptyTrash,
    toggleDarkMode,
    restart,
    shutDown,
    logOut,
    quitAll,
    sleepDisplays,
    screenSaver,
    showTrash,
    toggleHiddenFiles,
    forceQuitDialog,
    restartFinder,
    restartDock,
    screenshotSelection,
    screenshotWindow,
    restartImmediately,
    shutDownImmediately,
    logOutImmediately,
    darkMode,
    lightMode,
    autoAppearance,
    timeHomeHere,
    timeHomeClocks,
    fixWispr,
};

/// Every action, in order.
inline constexpr auto allSystemActions = std::to_array<SystemAction>({
    SystemAction::eject,
    SystemAction::lockScreen,
    SystemAction::sleep,
    SystemAction::emptyTrash,
    SystemAction::toggleDarkMode,
    SystemAction::restart,
    SystemAction::shutDown,
    SystemAction::logOut,
    SystemAction::quitAll,
    SystemAction::sleepDisplays,
    SystemAction::screenSaver,
    SystemAction::showTrash,
    SystemAction::toggleHiddenFiles,
    SystemAction::forceQuitDialog,
    SystemAction::restartFinder,
    SystemAction::restartDock,
    SystemAction::screenshotSelection,
    SystemAction::screenshotWindow,
    SystemAction::restartImmediately,
    SystemAction::shutDownImmediately,
    SystemAction::logOutImmediately,
    SystemAction::darkMode,
    SystemAction::lightMode,
    SystemAction::autoAppearance,
    SystemAction::timeHomeHere,
    SystemAction::timeHomeClocks,
    SystemAction::fixWispr,
});

/// What is known of each action. Pure; any thread.
namespace SystemActions {

/// As the commands file spells it: "eject".
std::string_view name(SystemAction action);

/// Nothing for a name that is none.
std::optional<SystemAction> named(std::string_view name);

/// "Eject all external drives".
std::string_view title(SystemAction action);

/// The line under its row, which tells in plain words what Return will do.
std::string_view plainEnglish(SystemAction action);

/// Whether the user confirms it before it is done.
bool asksFirst(SystemAction action);

/// What keeps the line from telling anything: "empty", a placeholder, too short, an em dash;
/// nothing when it is as it should be. `text` stands for any action's line.
std::optional<std::string> guidanceProblem(std::string_view text);
std::optional<std::string> guidanceProblem(SystemAction action);

} // namespace SystemActions
} // namespace tessarine
