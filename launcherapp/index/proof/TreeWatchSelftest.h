#pragma once

#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/TreeWatcher.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessarine {

/// Watches a temporary folder, makes a file in it and requires that the folder is reported within
/// 15 seconds; beside that, that paths are mapped to the right roots.
namespace TreeWatchSelftest {

/// The root that a path belongs to, as the index finds it.
using RootOf = std::optional<std::string> (*)(std::string_view path,
                                              std::span<const std::string> roots);

/// What it needs; all of it outlives the test.
struct Doors {
    MainQueue& queue;
    TreeWatcher& watcher;
    FileStore& files;
};

/// Main thread. Calls `done` once, later, with the folder removed again.
void run(const Doors& doors,
         const Environment& environment,
         RootOf rootOf,
         std::function<void(SelftestResult)> done);

} // namespace TreeWatchSelftest
} // namespace tessarine
