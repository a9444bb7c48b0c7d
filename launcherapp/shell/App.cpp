#include "launcherapp/shell/App.h"

#include "LauncherCore/answers/RateTableJson.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/catalog/RecentApps.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/catalog/StandInApps.h"
#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/FolderListings.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/modes/RenderModes.h"
#include "launcherapp/platform/linux/desktop/DBusApplicationBus.h"
#include "launcherapp/platform/linux/desktop/DesktopFileManager.h"
#include "launcherapp/platform/linux/desktop/NoWindowList.h"
#include "launcherapp/platform/linux/desktop/PortalAppearance.h"
#include "launcherapp/platform/linux/desktop/ThemeIcons.h"
#include "launcherapp/platform/linux/desktop/X11WindowList.h"
#include "launcherapp/platform/linux/files/FileResidentCopies.h"
#include "launcherapp/platform/linux/files/PosixDirectoryReader.h"
#include "launcherapp/platform/linux/files/PosixFileStore.h"
#include "launcherapp/platform/linux/files/ProcMountTable.h"
#include "launcherapp/platform/linux/files/QtFileTypes.h"
#include "launcherapp/platform/linux/files/SystemZone.h"
#include "launcherapp/platform/linux/network/QtHttpClient.h"
#include "launcherapp/platform/linux/processes/LocalDictionary.h"
#include "launcherapp/platform/linux/processes/QtMainQueue.h"
#include "launcherapp/platform/linux/processes/QtProcessLauncher.h"
#include "launcherapp/platform/linux/processes/ThreadPoolWorkQueues.h"
#include "launcherapp/platform/linux/watching/InotifyDirectoryWatcher.h"
#include "launcherapp/platform/linux/watching/InotifyTreeWatcher.h"
#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/EmojiRows.h"
#include "launcherapp/query/rows/FileRows.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/DesktopPresence.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"
#include "launcherapp/shell/SingleInstance.h"
#include "launcherapp/shell/SupportDirectory.h"
#include "launcherapp/shell/modes/IndexModes.h"
#include "launcherapp/shell/modes/Modes.h"
#include "launcherapp/sources/AnswerService.h"
#include "launcherapp/sources/CalcStore.h"
#include "launcherapp/sources/DemonstrationSources.h"
#include "launcherapp/sources/Rates.h"
#include "launcherapp/sources/ZoneStore.h"

#include <fmt/format.h>

#include <QApplication>
#include <QClipboard>
#include <QCoreApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
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

/// Any thread.
double secondsRunning() {
    return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
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
    std::shared_ptr<const DirectoryReader> directories = std::make_shared<PosixDirectoryReader>();
    ProcMountTable mounts;
    InotifyTreeWatcher trees{queue};
    QtFileTypes fileTypes;
    DesktopFileManager fileManager{queue};
    QtHttpClient web;

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
    std::shared_ptr<IndexWalker> walker =
        std::make_shared<IndexWalker>(directories, secondsRunning);
    MountedVolumes volumes{mounts, prefs, *walker, diagnostics};
    FileIndex index{{.queue = queue,
                     .work = work,
                     .files = files,
                     .watcher = trees,
                     .diagnostics = diagnostics},
                    walker,
                    volumes,
                    {.searchFolders = [this] { return prefs.searchFolders(); },
                     .foldersOnlyRoots = [this] { return prefs.foldersOnlyRoots(); }},
                    support.location() + "/index.json",
                    indexRun()};
    Subscription folderEdits = prefs.onChange([this](std::string_view key) {
        if (key == prefs.searchFolders.key())
            index.rootsChanged();
        else if (key == prefs.foldersOnlyRoots.key())
            index.rebuild(FileIndex::Force::yes);
    });
    std::string browsed; ///< the folder whose entries were last shown
    Subscription browsing;
    FolderListings listings{queue, work, directories};
    FileOpener opener{{.catalog = catalog,
                       .launcher = launcher,
                       .types = fileTypes,
                       .manager = fileManager,
                       .diagnostics = diagnostics}};
    UsageStore usage{queue,
                     diagnostics,
                     {.own = stateFile("usage.json"), .synced = stateFile("synced-usage.json")},
                     [this] { return prefs.learnFromUse(); },
                     [](std::string_view) { return false; }}; // no commands of the user's yet
    SearchModel model{modelServices()};
    Rates rates{queue, web, diagnostics, stateFile("rates.json"), rateProviders(), [this] {
                    return prefs.rateSource();
                }};
    Subscription rateEdits = prefs.onChange([this](std::string_view key) {
        if (key == prefs.rateSource.key())
            rates.refreshIfStale(Rates::Force::no);
    });
    ZoneStore zones{queue,
                    prefs,
                    {.read = [this] { return prefs.timeHome(); },
                     .write = [this](const std::string& zone) { rememberHome(zone); }},
                    [zone = SystemZone(environment.timeZone)] { return zone.identifier(); }};
    CalcStore calculations{
        queue, stateFile("calc-history.json"), [this] { return prefs.calcHistoryEnabled(); }};
    AnswerService answers{{.queue = queue,
                           .prefs = prefs,
                           .rates = rates,
                           .zones = zones,
                           .calculations = calculations},
                          {.numbers = environment.numbersLocale,
                           .money = environment.moneyLocale,
                           .dates = environment.datesLocale}};
    CreditResolver credits{catalog, files, environment};
    RecentApps recent{running, catalog};

    PortalAppearance desktop;
    Appearance appearance{prefs, desktop};
    const PanelViewServices view{.model = model,
                                 .prefs = prefs,
                                 .appearance = appearance,
                                 .desktop = desktop,
                                 .icons = icons,
                                 .credits = credits,
                                 .catalog = catalog};
    RenderModes rendering{view};
    PanelModes panelModes = rendering.modes();
    std::unique_ptr<DesktopPresence> presence = presenceOnDesktop();

    const IndexModeServices indexing{.work = work,
                                     .diagnostics = diagnostics,
                                     .trees = trees,
                                     .volumes = volumes,
                                     .index = index,
                                     .walker = walker};
    ModeContext modes{
        .commandLine = commandLine,
        .environment = environment,
        .queue = queue,
        .files = files,
        .catalog = catalog,
        .prefs = prefs,
        .model = model,
        .credits = credits,
        .answers = &answers,
        .indexing = &indexing,
        .panel = &panelModes,
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
    std::unique_ptr<DesktopPresence> presenceOnDesktop();
    void openSettings();
    void logLaunch();
    FileIndex::Run indexRun() const;
    void wireModel();
    void wireVerbs();
    void hideBeforeVerbs();
    void wireFiles();
    void wireAnswers();
    void startAnswers();
    RateProviders rateProviders() const;
    void rememberHome(const std::string& zone);
    Rows browse(const std::string& folder, std::string_view query);

    FileRowSources fileRowSources() const {
        return {.verbs = model.verbs, .home = environment.home, .expanded = model.expandedGroups()};
    }

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

/// Nothing where Qt has no windows to show.
std::unique_ptr<DesktopPresence> App::Services::presenceOnDesktop() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()) || Modes::draws(commandLine))
        return nullptr;
    auto made = std::make_unique<DesktopPresence>(
        DesktopPresence::Services{.queue = queue,
                                  .work = work,
                                  .diagnostics = diagnostics,
                                  .windows = *windows,
                                  .view = view,
                                  .openSettings = [this] { openSettings(); },
                                  .quit = [] { QCoreApplication::exit(0); }});
    panelModes.panel = &made->panel();
    return made;
}

/// There is no window of settings: the file is made to be edited by hand.
void App::Services::openSettings() {
    const auto path = environment.configHome + "/tessarine/preferences.json";
    try {
        if (!files.info(path))
            files.save(path, "{}\n");
    } catch (const std::exception& error) {
        diagnostics.log(fmt::format("settings: {}", error.what()));
    }
    opener.open(path);
}

void App::Services::logLaunch() {
    diagnostics.log(fmt::format("launched {} ({}); hotkey: {}; clipboard: {}; voice:{}",
                                ProductInfo::version,
                                ProductInfo::build,
                                presence ? presence->hotkeyStatus() : "no display",
                                presence ? presence->clipboardStatus() : "no display",
                                "not registered"));
}

void App::Services::wireModel() {
    wireVerbs();
    hideBeforeVerbs();
    wireFiles();
    wireAnswers();
    if (demonstration.isOn())
        addDemonstrationSources(model);
    model.families.recentApps = [this] { return recent.recent(catalog.apps()); };
    model.families.lookUp = [this](const std::string& word,
                                   const std::function<void(std::string)>& found) {
        dictionary.define(word, [found](std::optional<std::string> text) {
            if (text)
                found(*std::move(text));
        });
    };
}

/// What leaves the panel takes it away first, so that what comes up has the screen and the keys.
void App::Services::hideBeforeVerbs() {
    const auto hiding = [this]<typename... Arguments>(std::function<void(Arguments...)>& verb) {
        if (verb)
            verb = [this, inner = std::move(verb)](Arguments... arguments) {
                if (model.dismiss)
                    model.dismiss();
                inner(arguments...);
            };
    };
    auto& verbs = model.verbs;
    hiding(verbs.launchApp);
    hiding(verbs.openUrl);
    hiding(verbs.openPath);
    hiding(verbs.revealPath);
    hiding(verbs.lookUpWord);
    hiding(verbs.openSettings);
    hiding(verbs.copyText);
}

/// What rows can have done.
void App::Services::wireVerbs() {
    model.verbs.launchApp = [this](const CatalogApp& app) { catalog.launch(app); };
    model.verbs.openUrl = [this](const std::string& url) { openUrl(url); };
    model.verbs.quitProgram = [] { QCoreApplication::exit(0); };
    model.verbs.openSettings = [this] { openSettings(); };
    if (presence)
        model.verbs.copyText = [](const std::string& text) {
            QGuiApplication::clipboard()->setText(QString::fromStdString(text));
        };
    model.verbs.lookUpWord = [this](const std::string& word) { openDictionary(word); };
    model.verbs.openPath = [this](const std::string& path) { opener.open(path); };
    model.verbs.revealPath = [this](const std::string& path) { opener.reveal(path); };
    model.verbs.trashPath = [this](const std::string& path) { opener.trash(path); };
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

FileIndex::Run App::Services::indexRun() const {
    if (demonstration.isOn())
        return FileIndex::Run::demonstration;
    return Modes::isHeadlessRun(commandLine) ? FileIndex::Run::headless : FileIndex::Run::resident;
}

void App::Services::wireFiles() {
    model.families.files = [this](std::string_view query) {
        constexpr std::size_t limit = 6;
        const auto found = index.search({.query = query, .limit = limit}, usage.ranking());
        return collapseSameName(found, limit, fileRowSources());
    };
    model.families.browse = [this](const std::string& folder, std::string_view query) {
        return browse(folder, query);
    };
    model.families.folderPath = folderOf;
    model.families.isBrowseRoot = [this](const std::string& folder) {
        const auto roots = index.roots();
        return std::ranges::count(roots, folder) > 0;
    };
    browsing = model.onChange([this] {
        if (!model.browsePath())
            browsed.clear(); // the next time into the same folder reads it anew
    });
    listings.arrived = [this] {
        if (model.browsePath())
            model.recompute();
    };
}

/// Where rates are asked for; the preferences may name other servers that speak alike.
RateProviders App::Services::rateProviders() const {
    RateProviders providers;
    if (const auto address = prefs.ecbRatesAddress(); !address.empty())
        providers.ecb = {.address = address, .page = address};
    if (const auto address = prefs.openRatesAddress(); !address.empty())
        providers.open = {.address = address, .page = address};
    return providers;
}

/// A mode that ends by itself leaves the settings alone.
void App::Services::rememberHome(const std::string& zone) {
    if (!endsByItself)
        prefs.timeHome.set(zone);
}

void App::Services::startAnswers() {
    if (demonstration.isOn())
        files.save(support.path() + "/rates.json",
                   RateTableJson::encoded(demonstrationRates(queue.now())));
    // What is typed into a mode that ends by itself is answered from the last run's rates.
    if (endsByItself || demonstration.isOn())
        rates.load();
    else
        rates.start();
    zones.start();
    AnswerService::warm(work);
}

void App::Services::wireAnswers() {
    const CalcHistoryVerbs history{
        .typeText = [this](const std::string& text) { model.setQuery(text); },
        .pin = [this](const std::string& id) { calculations.pin(id); },
        .unpin = [this](const std::string& id) { calculations.unpin(id); },
        .remove = [this](const std::string& id) { calculations.remove(id); }};
    model.families.answers = [this, history](std::string_view query) {
        return answers.rows(query, model.verbs, history);
    };
    model.families.calcHistory = [this, history](std::string_view argument, ListMode mode) {
        return mode == ListMode::keyword ? answers.historyRows(argument, model.verbs, history)
                                         : Rows{};
    };
    model.families.menuActions = [this, history](const ResultRow& row) {
        return answers.historyActions(row, model.verbs, history);
    };
    model.families.emoji = [this](std::string_view query) { return emojiRows(query, model.verbs); };
    model.families.copyText = [this](const ResultRow& row) {
        return row.id.starts_with(emojiRowPrefix) ? row.glyph : answers.historyCopyText(row);
    };
}

/// What a folder holds, read anew each time it is gone into.
Rows App::Services::browse(const std::string& folder, std::string_view query) {
    if (folder != browsed)
        listings.forget();
    browsed = folder;
    if (const auto listing = listings.listing(folder))
        return browseRows(folder, *listing, query, fileRowSources());
    return listings.isUnreadable(folder) ? Rows{unreadableFolderRow(folder)} : Rows{};
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

/// Every step returns at once: a service makes its first load on a queue of its own.
int App::run() {
    Services& services = *services_;
    services.wireModel();
    services.catalog.start();
    services.volumes.start(
        [&index = services.index](std::string_view reason) { index.volumesChanged(reason); });
    services.index.start();
    if (services.presence && services.isResident)
        services.presence->start();
    services.startAnswers();
    if (services.presence && services.isResident) {
        services.presence->registerHotkey();
        std::fputs((services.presence->invitation() + "\n").c_str(), stderr);
    } else if (services.isResident) {
        std::fputs("Tessarine is running without a display that it can show a panel on: see the "
                   "README for what works without one. Control-C ends it.\n",
                   stderr);
    }
    services.logLaunch();
    Modes::schedule(services.modes);
    const int status = QCoreApplication::exec();
    // Waiting saves and log lines use services that go before the queues do.
    services.work.finish();
    return status;
}

} // namespace tessarine
