#include "launcherapp/shell/AppCommands.h"

#include "launcherapp/commands/HarmlessEffects.h"
#include "launcherapp/platform/linux/desktop/PictureClipboard.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/desktop/SystemBus.h"
#include "launcherapp/platform/linux/system/LinuxSystemEffects.h"
#include "launcherapp/platform/linux/system/files/BlockHolders.h"
#include "launcherapp/shell/AppDoors.h"
#include "launcherapp/shell/AppServices.h"

#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// What the machine's actions work through, the user's own session above all.
SystemDoors
systemDoors(AppServices& services, const DesktopAppearance& desktop, Pasteboard& board) {
    auto& doors = services.doors;
    SystemDoors result{
        .queue = doors.queue,
        .work = doors.work,
        .programs = doors.programs,
        .launcher = doors.processes,
        .mounts = doors.mounts,
        .environment = services.environment,
        .log = [&log = services.diagnostics](const std::string& line) { log.log(line); },
        .copyImage = [&work = doors.work,
                      &board](const std::string& path,
                              EffectDone done) { copyPicture(work, board, path, std::move(done)); },
        .folderOpener =
            [&catalog = services.catalog] {
                const auto* opener = catalog.registry()->handlerForType("inode/directory");
                return opener ? opener->bundleID : std::string();
            },
        .openUrl = [&opener =
                        services.opener](const std::string& url,
                                         EffectDone done) { opener.openUrl(url, std::move(done)); },
        .blockHolders =
            [](const std::string& device) { return blockHolders("/sys/class/block", device); },
        .colorScheme = [&desktop] { return desktop.colorScheme(); },
        .sessionBus = sessionBus,
        .systemBus = {},
        .user = ::getuid(),
        .sessionID = qEnvironmentVariable("XDG_SESSION_ID").toStdString(),
        .patience = {},
        .sessionType = {}};
    if (qEnvironmentVariableIsSet("XDG_SESSION_TYPE"))
        result.sessionType = qEnvironmentVariable("XDG_SESSION_TYPE").toStdString();
    using std::chrono::milliseconds;
    result.systemBus = [patience =
                            std::chrono::duration_cast<milliseconds>(result.patience.systemBus)] {
        return systemBus(QStringLiteral("tessarine-actions"), patience);
    };
    return result;
}

/// A demonstration, and a test of the whole program, must not empty a real trash by one wrong key.
std::unique_ptr<SystemEffects>
systemEffects(AppServices& services, const DesktopAppearance& desktop, Pasteboard& board) {
    auto& queue = services.doors.queue;
    if (services.run.isDemonstration)
        return std::make_unique<HarmlessEffects>(queue,
                                                 "a demonstration does nothing to this computer");
    if (services.environment.isHarmless)
        return std::make_unique<HarmlessEffects>(
            queue, "TESSARINE_HARMLESS is set, so nothing is done to this computer");
    return std::make_unique<LinuxSystemEffects>(systemDoors(services, desktop, board));
}

/// Those of other programs, as the user knows them.
std::vector<OpenWindow> openWindows(AppServices& services) {
    std::vector<OpenWindow> open;
    for (const auto& window : services.windows().windows()) {
        if (!window.ordinary || window.processID == ::getpid())
            continue;
        auto owner = services.running.owner(window);
        const auto* app = owner ? services.catalog.registry()->byID(*owner) : nullptr;
        auto name = app && !app->name.empty() ? app->name : window.className;
        open.push_back({.id = window.id,
                        .name = name.empty() ? "a window without a name" : std::move(name),
                        .bundleID = std::move(owner)});
    }
    return open;
}

} // namespace

AppCommands::AppCommands(AppServices& made,
                         const DesktopAppearance& desktop,
                         Pasteboard& board,
                         Presence presence)
    : services(made),
      alerts([&log = made.diagnostics](std::string_view line) { log.log(std::string(line)); }),
      effects(systemEffects(made, desktop, board)), windows({.queue = made.doors.queue,
                                                             .control = made.windowControl(),
                                                             .windows = made.windows(),
                                                             .running = made.running,
                                                             .catalog = made.catalog,
                                                             .diagnostics = made.diagnostics}),
      links({.queue = made.doors.queue,
             .work = made.doors.work,
             .catalog = made.catalog,
             .launcher = made.launcher,
             .opener = made.opener,
             .types = made.doors.fileTypes,
             .diagnostics = made.diagnostics}),
      runtime({.queue = made.doors.queue,
               .processes = made.doors.processes,
               .programs = made.doors.programs,
               .tokens = *made.doors.tokens,
               .catalog = made.catalog,
               .opener = made.opener,
               .links = links,
               .diagnostics = made.diagnostics},
              made.environment),
      lists({.queue = made.doors.queue,
             .runtime = runtime,
             .programs = made.doors.programs,
             .work = made.doors.work,
             .diagnostics = made.diagnostics}),
      jumps({.queue = made.doors.queue,
             .work = made.doors.work,
             .catalog = made.catalog,
             .launcher = made.launcher,
             .opener = made.opener,
             .types = made.doors.fileTypes,
             .running = made.running,
             .windows = *made.doors.windows,
             .accessibility = made.doors.accessibility,
             .alerts = alerts,
             .diagnostics = made.diagnostics,
             .resolve = [this](std::string_view text) { return runtime.resolve(text); },
             .open =
                 [this](std::vector<std::string> urls, CommandRuntime::Activation activation) {
                     runtime.open(std::move(urls), activation);
                 }}),
      system({.queue = made.doors.queue,
              .work = made.doors.work,
              .files = made.doors.files,
              .catalog = made.catalog,
              .running = made.running,
              .prefs = made.prefs,
              .effects = *effects,
              .alerts = alerts,
              .diagnostics = made.diagnostics,
              .openWindows = [&made] { return openWindows(made); },
              .closeWindow = [&made](std::uint64_t window) { made.windowControl().close(window); },
              .showPanel = presence.showPanel},
             made.environment),
      hotkeys({.hotkey = presence.hotkey, .usage = made.usage, .diagnostics = made.diagnostics},
              {.showPanel = presence.showPanel,
               .run = [this](const CommandSpec& command) { runtime.run(command, {}); }}),
      store({.queue = made.doors.queue,
             .work = made.doors.work,
             .files = std::make_shared<PosixFileStore>(),
             .directories = made.doors.watcher,
             .prefs = made.prefs,
             .diagnostics = made.diagnostics,
             .hotkeys = hotkeys,
             .environment = made.environment},
            made.support.location(),
            made.run.isDemonstration ? CommandStore::Content::demonstration
                                     : CommandStore::Content::file) {
    runtime.system = [this](SystemAction action) {
        ++actionsUnderWay_;
        system.run(action, [this](const std::optional<std::string>&) { --actionsUnderWay_; });
    };
    runtime.jump = [this](const CommandSpec& command, const std::string& argument) {
        jumps.run(command, argument);
    };
    made.isUsersCommand = [this](std::string_view id) { return catalog.isUsers(id); };
}

CommandWiring::Services AppCommands::wiringServices() {
    return {.model = services.model,
            .prefs = services.prefs,
            .usage = services.usage,
            .index = services.index,
            .opener = services.opener,
            .list = services.windows(),
            .windows = windows,
            .runtime = runtime,
            .lists = lists,
            .store = store,
            .catalog = catalog};
}

} // namespace tessarine
