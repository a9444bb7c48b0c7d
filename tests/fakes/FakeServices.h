#pragma once

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePlatform.h"

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
                            .messagesLocale = "C",
                            .collationLocale = "C"};
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/home/u/.local/share/tessarine"; },
                            Diagnostics::Run::oneShot};
    RunningApps running{platform.windows};
    AppLauncher launcher{platform.queue, platform.processes, platform.bus, environment};
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
                       {}};

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
