#pragma once

#include "LauncherCore/catalog/CatalogApp.h"
#include "LauncherCore/commands/CommandSpec.h"

#include <functional>
#include <string>

namespace tessarine {

/// What rows and their menus can have done. Rows are built of these and of values alone, so that
/// building one touches neither disk nor process, network or bus. One that is empty is not to be
/// had on this desktop, or not built yet: what needs it is not offered. Main thread only.
struct RowVerbs {
    std::function<void(const CatalogApp& app)> launchApp;
    std::function<void(const CatalogApp& app)> quitApp;
    std::function<void(const std::string& url)> openUrl;
    std::function<void(const std::string& text)> copyText;
    std::function<std::string()> copyObstacle; ///< why nothing can be copied now; "" where it can
    /// Into the window that the user came from, key by key. Whether that can be done is asked for
    /// each list of rows: a compositor may let programs press keys later, and its seat may go.
    std::function<void(const std::string& text)> typeText;
    std::function<bool()> canType;
    std::function<void(const CommandSpec& command, const std::string& argument)> runCommand;
    std::function<void()> editCommands;
    std::function<void(const std::string& path)> openPath;
    std::function<void(const std::string& path)> openPathWith; ///< lets the user choose by what
    std::function<void(const std::string& path)> revealPath;
    std::function<void(const std::string& path)> trashPath;
    std::function<void(const std::string& path)> openTerminal;
    std::function<void(const std::string& word)> lookUpWord; ///< in the dictionary application
    std::function<void()> openSettings;
    std::function<void()> openHealth;
    std::function<void()> checkForUpdate;
    std::function<void()> quitProgram;
};

} // namespace tessarine
