#pragma once

#include "launcherapp/commands/CommandCatalog.h"
#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/SystemCommands.h"
#include "tests/fakes/FakeAlerts.h"
#include "tests/fakes/FakeServices.h"
#include "tests/fakes/FakeSystemEffects.h"

#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// The user's commands and the machine's over the fakes, on a machine without a display for chords.
struct CommandOffer {
    static constexpr auto folder = "/home/u/.local/share/tessarine";
    static constexpr auto path = "/home/u/.local/share/tessarine/commands.json";

    explicit CommandOffer(FakeServices& made) : services(made) {}

    /// These commands as the file's, as JSON objects with commas between them.
    void read(const std::string& commands) {
        services.platform.files.file(path, R"({"version": 1, "commands": [)" + commands + "]}");
        store.load();
    }

    FakeServices& services;
    FakeSystemEffects effects{services.platform.queue};
    FakeAlerts alerts;
    SystemCommands system{{.queue = services.platform.queue,
                           .work = services.platform.work,
                           .files = services.platform.files,
                           .catalog = services.catalog,
                           .running = services.running,
                           .prefs = services.prefs,
                           .effects = effects,
                           .alerts = alerts,
                           .diagnostics = services.diagnostics,
                           .openWindows = [] { return std::vector<OpenWindow>(); },
                           .closeWindow = {},
                           .showPanel = {}},
                          services.environment};
    CommandHotkeys hotkeys{{.hotkey = [] { return nullptr; },
                            .usage = services.usage,
                            .diagnostics = services.diagnostics},
                           {}};
    CommandStore store{{.queue = services.platform.queue,
                        .work = services.platform.work,
                        .files = {std::shared_ptr<void>(), &services.platform.files},
                        .directories = services.platform.watcher,
                        .prefs = services.prefs,
                        .diagnostics = services.diagnostics,
                        .hotkeys = hotkeys,
                        .environment = services.environment},
                       folder,
                       CommandStore::Content::file};
    CommandCatalog catalog{store, system, hotkeys};
};

} // namespace tessarine
