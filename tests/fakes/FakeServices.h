#pragma once

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/Prefs.h"
#include "tests/fakes/FakePlatform.h"

#include <memory>
#include <string>
#include <string_view>

namespace tessarine {

/// The services around the application catalog, wired over the fakes as the program wires them.
struct FakeServices {
    FakePlatform platform;
    Environment environment{.home = "/home/u",
                            .dataHome = "/home/u/.local/share",
                            .configHome = "/home/u/.config",
                            .dataDirs = {"/usr/share"},
                            .configDirs = {"/etc/xdg"},
                            .userFolders = {.downloads = "/home/u/Downloads",
                                            .desktop = "/home/u/Desktop",
                                            .documents = "/home/u/Documents"},
                            .messagesLocale = "C",
                            .collationLocale = "C"};
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/home/u/.local/share/tessarine"; },
                            Diagnostics::Run::oneShot};
    DefaultsStore defaults{platform.queue,
                           StateFile(platform.files,
                                     platform.work.serial("preferences"),
                                     diagnostics,
                                     "/home/u/.config/tessarine/preferences.json",
                                     StateFile::Failures::logged),
                           diagnostics};
    Prefs prefs{defaults, environment};
    RunningApps running{platform.windows};
    AppLauncher launcher{
        platform.queue, platform.processes, platform.bus, platform.tokens, environment};
    AppCatalog catalog{{.queue = platform.queue,
                        .work = platform.work,
                        .files = platform.files,
                        .watcher = platform.watcher,
                        .icons = platform.icons,
                        .launcher = launcher,
                        .running = running,
                        .diagnostics = diagnostics},
                       environment,
                       AppCatalog::Content::installed,
                       [this] { return prefs.extraAppFolders(); }};

    UsageStore usage{platform.queue,
                     diagnostics,
                     {.own = usageFile("usage.json"), .synced = usageFile("synced-usage.json")},
                     [this] { return prefs.learnFromUse(); },
                     [](std::string_view) { return false; }};

    FakeServices() { usage.load(); }

    /// A search model over these services, with the verbs that they have.
    std::unique_ptr<SearchModel> makeModel() {
        auto model = std::make_unique<SearchModel>(SearchModel::Services{.queue = platform.queue,
                                                                         .diagnostics = diagnostics,
                                                                         .catalog = catalog,
                                                                         .prefs = prefs,
                                                                         .usage = usage});
        model->verbs.launchApp = [this](const CatalogApp& app) { catalog.launch(app); };
        return model;
    }

    StateFile usageFile(const std::string& name) {
        return {platform.files,
                platform.work.serial("usage"),
                diagnostics,
                "/home/u/.local/share/tessarine/" + name,
                StateFile::Failures::silent};
    }

    /// What was logged so far.
    std::string log() {
        platform.time.settle();
        return platform.files.read("/home/u/.local/share/tessarine/tessarine.log", 1 << 20)
            .value_or("");
    }

    /// Installs "/usr/share/applications/<id>.desktop" with this name and more lines.
    std::string
    install(const std::string& id, const std::string& name, std::string_view more = "") {
        const auto path = "/usr/share/applications/" + id + ".desktop";
        platform.files.file(path,
                            "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + id +
                                "\n" + std::string(more));
        return path;
    }

    /// Starts the catalog and lets its first scan publish.
    void startCatalog() {
        catalog.start();
        platform.time.settle();
    }
};

} // namespace tessarine
