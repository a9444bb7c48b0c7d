#include "launcherapp/shell/App.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/RecentApps.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/catalog/StandInApps.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/linux/DBusApplicationBus.h"
#include "launcherapp/platform/linux/FileResidentCopies.h"
#include "launcherapp/platform/linux/InotifyDirectoryWatcher.h"
#include "launcherapp/platform/linux/LocalDictionary.h"
#include "launcherapp/platform/linux/NoWindowList.h"
#include "launcherapp/platform/linux/PosixFileStore.h"
#include "launcherapp/platform/linux/QtMainQueue.h"
#include "launcherapp/platform/linux/QtProcessLauncher.h"
#include "launcherapp/platform/linux/ThemeIcons.h"
#include "launcherapp/platform/linux/ThreadPoolWorkQueues.h"
#include "launcherapp/platform/linux/X11WindowList.h"
#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/Modes.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"
#include "launcherapp/shell/SingleInstance.h"
#include "launcherapp/shell/SupportDirectory.h"

#include <fmt/format.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

void printLine(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

std::unique_ptr<WindowList> windowList(const Environment& environment) {
    if (environment.hasX11)
        return std::make_unique<X11WindowList>();
    return std::make_unique<NoWindowList>("there is no X11 display, and windows of Wayland are "
                                          "not read yet");
}

/// A run on canned data has no private stores: what it remembers lies in a folder that goes with
/// it.
class Demonstration {
public:
    explicit Demonstration(bool on) {
        if (on)
            folder_.emplace();
    }

    bool isOn() const { return folder_.has_value(); }

    Environment surroundings(Environment environment) const {
        if (folder_)
            environment.dataHome = folder_->path().toStdString();
        return environment;
    }

private:
    std::optional<QTemporaryDir> folder_;
};

} // namespace

struct App::Services {
    Services(CommandLine arguments, Environment startEnvironment)
        : commandLine(std::move(arguments)), environment(std::move(startEnvironment)),
          endsByItself(Modes::endsByItself(commandLine)) {}

    const CommandLine commandLine;
    const Environment environment;
    const bool endsByItself; ///< a mode was asked for: this is no resident copy

    // The doors to the world.
    QtMainQueue queue;
    ThreadPoolWorkQueues work{queue};
    PosixFileStore files;
    InotifyDirectoryWatcher watcher{queue};
    QtProcessLauncher processes{environment};
    DBusApplicationBus bus{queue};
    ThemeIcons icons{environment};
    std::unique_ptr<WindowList> windows = windowList(environment);
    FileResidentCopies copies{environment};

    LocalDictionary dictionary{processes};

    // The services, in start-up order.
    Demonstration demonstration{commandLine.has("--demo")};
    SupportDirectory support{files, demonstration.surroundings(environment)};
    Diagnostics diagnostics{queue,
                            work,
                            files,
                            [this] { return support.path(); },
                            endsByItself ? Diagnostics::Run::oneShot : Diagnostics::Run::resident};
    /// Older copies are gone before anything of theirs is read. A one-shot mode has no identity
    /// of its own: it leaves them alone.
    const bool isResident = becomeResident();
    DefaultsStore defaults{StateFile(files,
                                     work.serial("com.corvane.tessarine.preferences"),
                                     diagnostics,
                                     environment.configHome + "/tessarine/preferences.json",
                                     StateFile::Failures::logged),
                           diagnostics};
    Prefs prefs{defaults, environment};
    RunningApps running{*windows};
    AppLauncher launcher{queue, processes, bus, environment};
    AppCatalog catalog{{.queue = queue,
                        .work = work,
                        .files = files,
                        .watcher = watcher,
                        .icons = icons,
                        .launcher = launcher,
                        .running = running,
                        .diagnostics = diagnostics},
                       environment,
                       demonstration.isOn() ? AppCatalog::Content::demonstration
                                            : AppCatalog::Content::installed,
                       [this] { return prefs.extraAppFolders(); }};
    UsageStore usage{queue,
                     diagnostics,
                     {.own = stateFile("usage.json"), .synced = stateFile("synced-usage.json")},
                     [this] { return prefs.learnFromUse(); },
                     [](std::string_view) { return false; }}; // no commands of the user's yet
    SearchModel model{modelServices()};
    CreditResolver credits{catalog, icons, files, environment};
    RecentApps recent{running, catalog};

    ModeContext modes{
        .commandLine = commandLine,
        .environment = environment,
        .queue = queue,
        .files = files,
        .catalog = catalog,
        .prefs = prefs,
        .model = model,
        .credits = credits,
        .freshModel = [this] { return std::make_unique<SearchModel>(modelServices()); },
        .print = printLine,
        .finish = [](int status) { QCoreApplication::exit(status); }};

    SearchModel::Services modelServices() {
        return {.queue = queue,
                .diagnostics = diagnostics,
                .catalog = catalog,
                .prefs = prefs,
                .usage = usage};
    }

    StateFile stateFile(const std::string& name) {
        return {files,
                work.serial("com.corvane.tessarine.state"),
                diagnostics,
                support.location() + "/" + name,
                StateFile::Failures::silent};
    }

    bool becomeResident();
    void wireModel();
    void openUrl(const std::string& url);
    void openDictionary(const std::string& word);
};

bool App::Services::becomeResident() {
    const auto identity = endsByItself ? std::nullopt : std::optional(ProductInfo::bundleID);
    SingleInstance::enforce(copies, queue, diagnostics, identity);
    if (identity)
        copies.announce();
    return identity.has_value();
}

/// What rows can have done, and the sources that have landed.
void App::Services::wireModel() {
    model.verbs.launchApp = [this](const CatalogApp& app) { catalog.launch(app); };
    model.verbs.openUrl = [this](const std::string& url) { openUrl(url); };
    model.verbs.quitProgram = [] { QCoreApplication::exit(0); };
    model.verbs.lookUpWord = [this](const std::string& word) { openDictionary(word); };
    model.families.recentApps = [this] { return recent.recent(catalog.apps()); };
    model.families.lookUp = [this](const std::string& word,
                                   const std::function<void(std::string)>& found) {
        dictionary.define(word, [found](std::optional<std::string> text) {
            if (text)
                found(*std::move(text));
        });
    };
}

/// Dictionary programs take the word as a "dict" address or not at all: then they open without it.
void App::Services::openDictionary(const std::string& word) {
    const auto& registry = *catalog.registry();
    if (registry.handlerForScheme("dict")) {
        openUrl("dict:///d:" + Urls::queryValue(word));
        return;
    }
    const auto* program = StandInApps::application(registry, "com.apple.Dictionary");
    if (!program) {
        diagnostics.log("dictionary: no dictionary application is installed");
        return;
    }
    launcher.launch(*program, {}, [this](std::optional<std::string> problem) {
        if (problem)
            diagnostics.log(fmt::format("dictionary: {}", *problem));
    });
}

void App::Services::openUrl(const std::string& url) {
    const auto scheme = url.substr(0, url.find(':'));
    const auto* handler = catalog.registry()->handlerForScheme(scheme);
    if (!handler) {
        diagnostics.log(fmt::format("open: no application opens {} addresses", scheme));
        return;
    }
    launcher.launch(*handler, {url}, [this, url](std::optional<std::string> problem) {
        if (problem)
            diagnostics.log(fmt::format("open: {} could not be opened: {}", url, *problem));
    });
}

App::App(CommandLine commandLine, Environment environment)
    : services_(std::make_unique<Services>(std::move(commandLine), std::move(environment))) {}

App::~App() = default;

int App::run() {
    Services& services = *services_;
    services.wireModel();
    services.catalog.start();
    Modes::schedule(services.modes);
    if (services.isResident)
        std::fputs("Tessarine is running. It has no panel and no hotkey yet: see the README for "
                   "what works today. Control-C ends it.\n",
                   stderr);
    return QCoreApplication::exec();
}

} // namespace tessarine
