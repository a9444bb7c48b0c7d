#include "launcherapp/shell/StartUp.h"

#include <array>

namespace tessarine {

namespace {

using StartUp::Hooks;
using StartUp::Step;
using StartUp::Task;

constexpr auto singleInstance = std::to_array<Task>({
    {"older copies", &Hooks::olderCopies},
    {"services", &Hooks::services},
});
constexpr auto settingsShortcut = std::to_array<Task>({
    {"settings shortcut"}, // not built yet: the panel's own chord opens the settings
});
constexpr auto appearance = std::to_array<Task>({
    {"appearance presets", &Hooks::appearance},
    {"app icon", &Hooks::appIcon},
});
constexpr auto menus = std::to_array<Task>({
    {"main menu"}, // not built yet
    {"status item", &Hooks::statusItem},
});
constexpr auto catalogs = std::to_array<Task>({
    {"command store", &Hooks::commandStore},
    {"system commands", &Hooks::systemCommands},
    {"app catalog", &Hooks::appCatalog},
    {"mounted volumes", &Hooks::mountedVolumes},
    {"file index", &Hooks::fileIndex},
});
constexpr auto panel = std::to_array<Task>({
    {"panel", &Hooks::panel},
});
constexpr auto stallWatch = std::to_array<Task>({
    {"stall watch"}, // not built yet
});
constexpr auto sources = std::to_array<Task>({
    {"clip groups", &Hooks::clipGroups},
    {"clipboard watcher", &Hooks::clipboardWatcher},
    {"clipboard sync"}, // not built yet
    {"settings sync"},  // not built yet
    {"recent apps", &Hooks::recentApps},
    {"rates", &Hooks::rates},
    {"zones", &Hooks::zones},
});
constexpr auto tables = std::to_array<Task>({
    {"time zones and places", &Hooks::answerTables},
});
constexpr auto companions = std::to_array<Task>({
    {"calculations", &Hooks::calculations},
    {"companions"},  // not built yet
    {"chat source"}, // not built yet
    {"session lock", &Hooks::sessionLock},
});
constexpr auto hotkeys = std::to_array<Task>({
    {"hotkeys and their guard", &Hooks::hotkeys},
    {"name on the session bus", &Hooks::busName},
});
constexpr auto updater = std::to_array<Task>({
    {"doctor's look at the desktop's own search"}, // not built yet
    // Not built yet: it will check every 900 s, but not while the user is busy, of which a flag or
    // a use less than 120 s ago is the sign.
    {"updater's configuration"},
    {"updater"},
});
constexpr auto launchLine = std::to_array<Task>({
    {"launch line", &Hooks::launchLine},
});
constexpr auto modes = std::to_array<Task>({
    {"modes of the command line", &Hooks::modes},
});

constexpr auto allSteps = std::to_array<Step>({
    {"single instance", singleInstance},
    {"settings shortcut", settingsShortcut},
    {"appearance", appearance},
    {"menus", menus},
    {"catalogs", catalogs},
    {"panel", panel},
    {"stall watch", stallWatch},
    {"sources", sources},
    {"tables", tables},
    {"companions", companions},
    {"hotkeys", hotkeys},
    {"updater", updater},
    {"log", launchLine},
    {"modes", modes},
});

} // namespace

std::span<const Step> StartUp::steps() {
    return allSteps;
}

void StartUp::run(const Hooks& hooks) {
    for (const auto& step : allSteps) {
        for (const auto& task : step.tasks) {
            if (task.hook && hooks.*task.hook)
                (hooks.*task.hook)();
        }
    }
}

} // namespace tessarine
