#pragma once

#include <array>
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

} // namespace tessarine
