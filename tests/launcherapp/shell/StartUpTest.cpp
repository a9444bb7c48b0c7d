#include "launcherapp/shell/StartUp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tessarine {
namespace {

/// The names of all tasks, in the order in which they run.
std::vector<std::string_view> tasksInOrder() {
    std::vector<std::string_view> names;
    for (const auto& step : StartUp::steps()) {
        for (const auto& task : step.tasks)
            names.push_back(task.name);
    }
    return names;
}

TEST(StartUp, hasItsFourteenStepsAndEachTaskOnce) {
    EXPECT_EQ(StartUp::steps().size(), 14u);
    auto names = tasksInOrder();
    std::ranges::sort(names);
    EXPECT_EQ(std::ranges::adjacent_find(names), names.end());
}

TEST(StartUp, whatNeedsSomethingComesAfterIt) {
    const struct {
        std::string_view earlier;
        std::string_view later;
        const char* reason;
    } cases[] = {
        {"older copies", "services", "they may be writing the settings still"},
        {"services", "settings shortcut", "nothing of them runs before"},
        {"services", "appearance presets", "they are settings"},
        {"appearance presets", "status item", "it is drawn in it"},
        {"status item", "app catalog", "the tray answers while the disk is read"},
        {"command store", "app catalog", "commands are rows from the first recompute on"},
        {"system commands", "app catalog", "so are the system's"},
        {"app catalog", "file index", "programs are found before files"},
        {"mounted volumes", "file index", "drives are among its roots"},
        {"file index", "panel", "its reading goes on beside the making of the window"},
        {"app catalog", "recent apps", "windows are told apart by what is installed"},
        {"panel", "stall watch", "making the window is no stall"},
        {"clip groups", "clipboard watcher", "a clipping is sorted when it comes"},
        {"zones", "time zones and places", "nobody waits for the tables"},
        {"rates", "hotkeys and their guard", "the panel can be summoned by then"},
        {"calculations", "hotkeys and their guard", "the panel can be summoned by then"},
        {"panel", "hotkeys and their guard", "there must be something to summon"},
        {"panel", "name on the session bus", "there must be something to summon"},
        {"hotkeys and their guard", "launch line", "it tells how they fared"},
        {"updater's configuration", "updater", "it begins with a check"},
        {"launch line", "modes of the command line", "they find everything started"},
    };

    const auto names = tasksInOrder();
    for (const auto& [earlier, later, reason] : cases) {
        SCOPED_TRACE(std::string(earlier) + " before " + std::string(later) + ": " + reason);
        const auto first = std::ranges::find(names, earlier);
        ASSERT_NE(first, names.end());
        EXPECT_NE(std::find(first, names.end(), later), names.end());
    }
}

TEST(StartUp, everyHookRunsOnceInTheOrderOfTheTableAndAnEmptyOneNot) {
    std::vector<std::string_view> ran;
    std::vector<std::string_view> landed;
    StartUp::Hooks hooks;
    for (const auto& step : StartUp::steps()) {
        for (const auto& task : step.tasks) {
            if (!task.hook)
                continue;
            EXPECT_FALSE(hooks.*task.hook) << task.name << " shares its hook";
            hooks.*task.hook = [&ran, name = task.name] { ran.push_back(name); };
            landed.push_back(task.name);
        }
    }
    // One that the table forgot would never run.
    EXPECT_EQ(landed.size(), sizeof(StartUp::Hooks) / sizeof(hooks.services));
    StartUp::run(hooks);
    EXPECT_EQ(ran, landed);

    ran.clear();
    hooks.panel = {};
    std::erase(landed, "panel");
    StartUp::run(hooks);
    EXPECT_EQ(ran, landed);
}

} // namespace
} // namespace tessarine
