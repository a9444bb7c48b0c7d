#pragma once

#include "launcherapp/commands/ListCommands.h"
#include "launcherapp/commands/WindowManager.h"
#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/CommandWiring.h"
#include "tests/fakes/FakeMountTable.h"
#include "tests/fakes/FakeTreeWatcher.h"
#include "tests/fakes/FakeWindowControl.h"
#include "tests/fakes/MemoryDirectoryReader.h"
#include "tests/launcherapp/commands/CommandFixture.h"
#include "tests/launcherapp/commands/CommandOffer.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tessarine {

/// A search model with the commands wired to it, as the program wires them, over the fakes. The
/// files of "/home/u/docs" are indexed once `index` has started.
struct WiredCommands {
    WiredCommands() {
        model.dismiss = [this] { events.emplace_back("hidden"); };
    }

    CommandFixture fixture;
    FakeServices& services = fixture.services;
    CommandOffer offer{services};
    ListCommands lists{{.queue = services.platform.queue,
                        .runtime = fixture.runtime,
                        .programs = services.platform.programs,
                        .work = services.platform.work,
                        .diagnostics = services.diagnostics}};
    FakeWindowControl control;
    WindowManager windows{{.queue = services.platform.queue,
                           .control = control,
                           .windows = services.platform.windows,
                           .running = services.running,
                           .catalog = services.catalog,
                           .diagnostics = services.diagnostics}};
    FakeMountTable mounts;
    FakeTreeWatcher trees;
    std::shared_ptr<MemoryDirectoryReader> reader =
        std::make_shared<MemoryDirectoryReader>(services.platform.files);
    std::shared_ptr<IndexWalker> walker = std::make_shared<IndexWalker>(
        reader, [this] { return services.platform.queue.uptime().count(); });
    MountedVolumes volumes{mounts, services.prefs, *walker, services.diagnostics};
    FileIndex index{{.queue = services.platform.queue,
                     .work = services.platform.work,
                     .files = services.platform.files,
                     .watcher = trees,
                     .diagnostics = services.diagnostics},
                    walker,
                    volumes,
                    {.searchFolders = [] { return std::vector<std::string>{"/home/u/docs"}; },
                     .foldersOnlyRoots = [] { return std::vector<std::string>(); }},
                    "/home/u/index.json",
                    FileIndex::Run::resident};
    std::unique_ptr<SearchModel> made = services.makeModel();
    SearchModel& model = *made;
    const std::set<std::string> expanded;
    CommandWiring wiring{{.model = model,
                          .prefs = services.prefs,
                          .usage = services.usage,
                          .index = index,
                          .opener = fixture.opener,
                          .list = services.platform.windows,
                          .windows = windows,
                          .runtime = fixture.runtime,
                          .lists = lists,
                          .store = offer.store,
                          .catalog = offer.catalog},
                         [this] {
                             return FileRowSources{.verbs = model.verbs,
                                                   .home = services.environment.home,
                                                   .expanded = expanded};
                         }};
    std::vector<std::string> events; ///< that the panel was hidden, and what a test adds
};

} // namespace tessarine
