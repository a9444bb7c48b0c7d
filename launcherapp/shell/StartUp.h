#pragma once

#include <functional>
#include <span>
#include <string_view>

namespace tessarine {

/// The order in which the program comes up: fourteen steps, each over before the next begins.
/// None but the first may wait for anything: a service makes its first load on a queue of its own.
/// Main thread only.
namespace StartUp {

/// What each task does in this run. An empty one does nothing: some tasks are for a resident copy
/// or for a display alone.
struct Hooks {
    std::function<void()> olderCopies; ///< may take seconds, while an older copy refuses to quit
    /// Makes the services, none of which is started by it. Their settings are read at once, as
    /// everything after asks for them, and only now, as an older copy may have written them last.
    std::function<void()> services;
    std::function<void()> appearance; ///< from here on it follows the settings and the desktop
    std::function<void()> appIcon;
    std::function<void()> statusItem;
    std::function<void()> commandStore;
    std::function<void()> systemCommands;
    std::function<void()> appCatalog;
    std::function<void()> mountedVolumes;
    std::function<void()> fileIndex;
    std::function<void()> panel;
    std::function<void()> clipGroups;
    std::function<void()> clipboardWatcher;
    std::function<void()> recentApps;
    std::function<void()> rates;
    std::function<void()> zones;
    std::function<void()> answerTables; ///< in the background: time zones and places
    std::function<void()> calculations;
    std::function<void()> sessionLock;
    std::function<void()> hotkeys; ///< from here on a key summons the panel
    std::function<void()> busName; ///< from here on the desktop can summon it too
    std::function<void()> launchLine;
    std::function<void()> modes;
};

struct Task {
    std::string_view name;
    /// Null for a service that is not built yet: its place is kept.
    std::function<void()> Hooks::*hook = nullptr;
};

struct Step {
    std::string_view name;
    std::span<const Task> tasks; ///< in the order in which they run
};

/// All of them, in their order.
std::span<const Step> steps();

void run(const Hooks& hooks);

} // namespace StartUp
} // namespace tessarine
