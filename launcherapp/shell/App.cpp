#include "launcherapp/shell/App.h"

#include "launcherapp/panel/PanelController.h"
#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/modes/RenderModes.h"
#include "launcherapp/platform/linux/desktop/DesktopApplication.h"
#include "launcherapp/platform/linux/desktop/LostDisplay.h"
#include "launcherapp/platform/linux/desktop/PortalAppearance.h"
#include "launcherapp/platform/linux/desktop/QtApplication.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/files/RunFolder.h"
#include "launcherapp/platform/linux/processes/EndSignals.h"
#include "launcherapp/platform/linux/surroundings/DesktopLook.h"
#include "launcherapp/shell/AppClipboard.h"
#include "launcherapp/shell/AppCommands.h"
#include "launcherapp/shell/AppServices.h"
#include "launcherapp/shell/Demonstration.h"
#include "launcherapp/shell/DesktopPresence.h"
#include "launcherapp/shell/FreshRows.h"
#include "launcherapp/shell/Invitation.h"
#include "launcherapp/shell/PanelInvitation.h"
#include "launcherapp/shell/ProductInfo.h"
#include "launcherapp/shell/RowWiring.h"
#include "launcherapp/shell/SingleInstance.h"
#include "launcherapp/shell/StartUp.h"
#include "launcherapp/shell/modes/ClipboardModes.h"
#include "launcherapp/shell/modes/CommandModes.h"
#include "launcherapp/shell/modes/IndexModes.h"
#include "launcherapp/shell/modes/Modes.h"
#include "launcherapp/sources/DemonstrationSources.h"

#include <fmt/format.h>

#include <QApplication>
#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// How long the end of the program waits for background work. Saves take much less; a walk or a
/// scan that is cut off is made anew by the next start.
constexpr Seconds lastPatience{0.5};

/// For whoever asks what the desktop can do: its portal may have to be started first.
constexpr std::chrono::milliseconds portalPatience{2000};

void printLine(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

AppRun kindOfRun(const CommandLine& commandLine) {
    const bool isDemonstration = commandLine.has("--demo");
    return {.isDemonstration = isDemonstration,
            .endsByItself = Modes::endsByItself(commandLine),
            .index = isDemonstration                     ? FileIndex::Run::demonstration
                     : Modes::isHeadlessRun(commandLine) ? FileIndex::Run::headless
                                                         : FileIndex::Run::resident};
}

/// What the panel looks like, on a display or in a picture.
struct Look {
    explicit Look(AppServices& services)
        : desktop([&diagnostics = services.diagnostics](const std::string& problem) {
              diagnostics.log("appearance: the desktop's is not known: " + problem);
          }),
          appearance(services.prefs, desktop, services.diagnostics), view{.model = services.model,
                                                                          .prefs = services.prefs,
                                                                          .appearance = appearance,
                                                                          .desktop = desktop,
                                                                          .icons =
                                                                              services.doors.icons,
                                                                          .credits =
                                                                              services.credits,
                                                                          .catalog =
                                                                              services.catalog} {}

    PortalAppearance desktop;
    Appearance appearance;
    const PanelViewServices view;
    RenderModes rendering{view};
    PanelModes modes = rendering.modes();
};

} // namespace

/// In start-up order; what is optional comes with its step.
class App::Parts {
public:
    Parts(CommandLine arguments, Environment startEnvironment, Seconds launched);

    StartUp::Hooks hooks();
    void outliveDisplay(char** argv);
    bool finishWork();
    int end(int status);

private:
    void becomeResident();
    void makeServices();
    void makeCommands();
    void makePanel();
    void registerHotkeys();
    void takeBusName();
    void keepRowsFresh();
    void startClipboard();
    void logLaunch();
    void scheduleModes();

    const CommandLine commandLine;
    const AppRun kind = kindOfRun(commandLine);
    const bool isResident = !kind.endsByItself;
    const Seconds launchedAt;
    const std::optional<RunFolder> demonstration;
    const Environment environment; ///< a demonstration's own, if it is one
    AppDoors doors;
    SupportDirectory support{doors.files, environment};
    Diagnostics diagnostics{doors.queue,
                            doors.work,
                            doors.files,
                            [this] { return support.path(); },
                            isResident ? Diagnostics::Run::resident : Diagnostics::Run::oneShot};

    std::optional<AppServices> services;
    std::optional<AppClipboard> clipboard;
    std::optional<RowWiring> rows;
    std::optional<Look> look;
    std::optional<DesktopPresence> presence; ///< nothing where Qt has no windows to show
    std::optional<PanelInvitation> invitation;
    std::optional<AppCommands> commands;
    std::optional<FreshRows> fresh;
    std::vector<Subscription> publications;
    std::optional<DesktopApplication> application;
    std::optional<IndexModeServices> indexing;
    std::optional<CommandModeServices> running;
    std::optional<ClipboardModeServices> copying;
    std::optional<ModeContext> modes;
    std::optional<LostDisplay> loss;
};

App::Parts::Parts(CommandLine arguments, Environment startEnvironment, Seconds launched)
    : commandLine(std::move(arguments)), launchedAt(launched),
      demonstration(kind.isDemonstration
                        ? std::optional<RunFolder>(std::in_place, startEnvironment, "demonstration")
                        : std::nullopt),
      environment(demonstration
                      ? Demonstration::surroundings(startEnvironment, demonstration->path())
                      : startEnvironment),
      doors(startEnvironment) {}

StartUp::Hooks App::Parts::hooks() {
    return {
        .olderCopies = [this] { becomeResident(); },
        .services = [this] { makeServices(); },
        .appearance =
            [this] {
                look.emplace(*services);
                makeCommands();
            },
        .appIcon = [this] { doors.queue.post(setApplicationIcon); },
        .statusItem =
            [this] {
                if (presence && isResident)
                    presence->installStatusItem();
            },
        .commandStore = [this] { commands->store.start(); },
        .systemCommands = [this] { commands->system.start(); },
        .appCatalog = [this] { services->catalog.start(); },
        .mountedVolumes =
            [this] {
                services->volumes.start([&index = services->index](std::string_view reason) {
                    index.volumesChanged(reason);
                });
            },
        .fileIndex = [this] { services->index.start(); },
        .panel = [this] { makePanel(); },
        .clipGroups =
            [this] {
                if (!kind.isDemonstration)
                    clipboard->groups.load(isResident || commandLine.has("--clip-groups")
                                               ? ClipGroupStore::Upkeep::all
                                               : ClipGroupStore::Upkeep::none);
            },
        .clipboardWatcher = [this] { startClipboard(); },
        .recentApps =
            [this] { rows->add(services->recent.emplace(services->running, services->catalog)); },
        .rates = [this] { services->startRates(); },
        .zones = [this] { services->zones.start(); },
        .answerTables = [this] { AnswerService::warm(doors.work); },
        .calculations =
            [this] {
                services->loadCalculations();
                rows->add(*services->answers, *services->calculations);
            },
        .sessionLock =
            [this] {
                if (presence && isResident)
                    presence->watchSessionLock();
            },
        .hotkeys =
            [this] {
                if (isResident)
                    registerHotkeys();
            },
        .busName =
            [this] {
                if (isResident)
                    takeBusName();
            },
        .launchLine =
            [this] {
                if (isResident)
                    logLaunch();
            },
        .modes = [this] { scheduleModes(); }};
}

/// Older copies are gone before anything of theirs is read. A one-shot mode has no identity of its
/// own: it leaves them alone.
void App::Parts::becomeResident() {
    const auto identity = isResident ? std::optional(ProductInfo::bundleID) : std::nullopt;
    SingleInstance::enforce(doors.copies, doors.queue, diagnostics, identity);
    if (identity)
        doors.copies.announce();
}

void App::Parts::makeServices() {
    auto& made = services.emplace(doors, diagnostics, support, environment, kind);
    const bool hasWindows =
        qobject_cast<QApplication*>(QCoreApplication::instance()) && !Modes::draws(commandLine);
    clipboard.emplace(made,
                      hasWindows || commandLine.has("--pasteboard-types")
                          ? AppClipboard::Board::ofTheDisplay
                          : AppClipboard::Board::none);
    const auto openSettings = [&made] { made.openSettings(); };
    const auto quit = [] { QCoreApplication::exit(0); };
    RowWiring::Verbs verbs{
        .copyText = {}, .copyObstacle = {}, .openSettings = openSettings, .quitProgram = quit};
    if (hasWindows) {
        verbs.copyText = [this](const std::string& text) { clipboard->copyText(text); };
        verbs.copyObstacle = [this] { return clipboard->board->ability().reason; };
        presence.emplace(
            DesktopPresence::Services{.desktop = doors.desktop,
                                      .queue = doors.queue,
                                      .work = doors.work,
                                      .diagnostics = diagnostics,
                                      .windows = *doors.windows,
                                      .tokens = *doors.tokens,
                                      .pasteText =
                                          [this](std::function<void(std::string)> got) {
                                              clipboard->readText(std::move(got));
                                          },
                                      .openSettings = openSettings,
                                      .quit = quit});
    }
    rows.emplace(RowWiring::Services{.model = made.model,
                                     .catalog = made.catalog,
                                     .launcher = made.launcher,
                                     .opener = made.opener,
                                     .index = made.index,
                                     .listings = made.listings,
                                     .usage = made.usage,
                                     .dictionary = doors.dictionary,
                                     .diagnostics = diagnostics},
                 std::move(verbs),
                 environment.home);
    if (kind.isDemonstration)
        addDemonstrationSources(made.model);
    else
        clipboard->wire();
    if (isResident)
        made.defaults.follow(doors.watcher);
    made.loadUsage();
}

void App::Parts::makeCommands() {
    const std::function<Hotkey*()> chords = [this] {
        return presence ? presence->hotkey() : nullptr;
    };
    commands.emplace(*services,
                     look->desktop,
                     *clipboard->board,
                     AppCommands::Presence{.hotkey = isResident ? chords : nullptr,
                                           .showPanel = [this](const std::string& query) {
                                               if (auto* panel =
                                                       presence ? presence->panel() : nullptr)
                                                   panel->show(query);
                                           }});
    rows->add(commands->wiringServices());
}

void App::Parts::makePanel() {
    if (!presence)
        return;
    look->modes.panel = &presence->makePanel(look->view);
    if (!isResident)
        return;
    presence->keepWarm();
    keepRowsFresh();
}

void App::Parts::keepRowsFresh() {
    fresh.emplace(
        doors.queue, services->model, [panel = presence->panel()] { return panel->isVisible(); });
    const auto published = [this] { fresh->published(); };
    publications.push_back(services->catalog.onPublished(published));
    // No other list changes with them.
    const auto clipped = [this] {
        if (services->model.showsClippings())
            fresh->published();
    };
    publications.push_back(clipboard->store.onChange(clipped));
    publications.push_back(clipboard->groups.onChange(clipped));
    // Any row that copies or pastes says whether it can.
    publications.push_back(clipboard->board->onAbilityChanged(published));
    publications.push_back(clipboard->images.onArrival([this] { fresh->pictureArrived(); }));
    publications.push_back(clipboard->fileFacts.onArrival([this] { fresh->pictureArrived(); }));
    publications.push_back(commands->catalog.onChange(published));
    publications.push_back(services->index.onPublished(published));
    publications.push_back(services->rates.onChange(published));
    publications.push_back(services->usage.onLoaded(published));
    publications.push_back(
        services->running.onActivated([this](const std::string&) { fresh->windowsChanged(); }));
    publications.push_back(services->running.onChanged([this] { fresh->windowsChanged(); }));
}

/// A run that answers and ends reads what was copied before; only a resident one changes it.
void App::Parts::startClipboard() {
    if (kind.isDemonstration)
        return;
    if (!isResident)
        return clipboard->load();
    clipboard->groups.follow(doors.watcher);
    clipboard->watcher.start();
}

void App::Parts::registerHotkeys() {
    if (!presence) {
        diagnostics.log("panel: " + Invitation::missingDisplay(doors.desktop));
        PanelInvitation::tellWithoutPanel(doors.desktop);
        return;
    }
    presence->registerHotkey();
    auto desktop = doors.desktop;
    desktop.hasSessionBus = sessionBus().has_value(); // not its address alone
    invitation.emplace(*presence,
                       services->defaults,
                       std::move(desktop),
                       diagnostics,
                       kind.isDemonstration ? PanelInvitation::Notices::none
                                            : PanelInvitation::Notices::allowed);
    invitation->tellOnceKnown(doors.queue);
}

void App::Parts::takeBusName() {
    using Action = DesktopApplication::Action;
    // The next call starts it anew, and may find a display.
    const bool wasStartedInVain = !presence && environment.isStartedByBus;
    const auto missing = wasStartedInVain ? Invitation::missingToBus(doors.desktop)
                                          : Invitation::missingDisplay(doors.desktop);
    const auto ofPanel = [this, &missing](std::function<void()> act) {
        return presence ? Action(std::move(act)) : Action(missing);
    };
    application.emplace(
        std::string(ProductInfo::bundleID),
        DesktopApplication::Handlers{
            // Whoever starts it a second time wants to see it, and the panel is what there is.
            .activate = ofPanel([this] { presence->bringUp(); }),
            .actions = {{"toggle", ofPanel([this] {
                             presence->toggle();
                             if (invitation)
                                 invitation->noteCall();
                         })},
                        {"clipboard", ofPanel([this] { presence->toggleClipboard(); })},
                        {"settings", [this] { services->openSettings(); }}},
            .refused =
                [wasStartedInVain] {
                    if (wasStartedInVain)
                        QCoreApplication::exit(1);
                },
            .problem = [this](const std::string& line) { diagnostics.log(line); }});
}

void App::Parts::logLaunch() {
    diagnostics.log(fmt::format("launched {} ({}); hotkey: {}; clipboard: {}; voice:{}",
                                ProductInfo::version,
                                ProductInfo::build,
                                presence ? presence->hotkeyStatus() : "no display",
                                presence ? presence->clipboardStatus() : "no display",
                                presence ? presence->voiceStatus() : "no display"));
}

void App::Parts::scheduleModes() {
    indexing.emplace(IndexModeServices{.work = doors.work,
                                       .diagnostics = diagnostics,
                                       .trees = doors.trees,
                                       .volumes = services->volumes,
                                       .index = services->index,
                                       .walker = services->walker});
    running.emplace(CommandModeServices{.store = commands->store,
                                        .catalog = commands->catalog,
                                        .runtime = commands->runtime,
                                        .lists = commands->lists,
                                        .probe =
                                            [this](const std::string& bundleID,
                                                   const std::vector<std::string>& names,
                                                   std::function<void(std::string)> told) {
                                                commands->jumps.probe(
                                                    bundleID, names, std::move(told));
                                            },
                                        .isSettled = [this] { return commands->isSettled(); }});
    copying.emplace(ClipboardModeServices{.board = *clipboard->board,
                                          .store = clipboard->store,
                                          .groups = clipboard->groups,
                                          .runtime = clipboard->runtime});
    modes.emplace(ModeContext{
        .commandLine = commandLine,
        .environment = environment,
        .launchedAt = launchedAt,
        .queue = doors.queue,
        .files = doors.files,
        .catalog = services->catalog,
        .prefs = services->prefs,
        .model = services->model,
        .credits = services->credits,
        .answers = &*services->answers,
        .indexing = &*indexing,
        .commands = &*running,
        .clipboard = &*copying,
        .panel = &look->modes,
        .desktop = [this] { return DesktopLook::withBus(doors.desktop, portalPatience); },
        .freshModel = [this] { return std::make_unique<SearchModel>(services->modelServices()); },
        .print = printLine,
        .printError =
            [](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); },
        .finish = [](int status) { QCoreApplication::exit(status); }});
    Modes::schedule(*modes);
}

void App::Parts::outliveDisplay(char** argv) {
    if (!isResident || !presence)
        return;
    loss.emplace(argv, [this](const std::string& words) {
        diagnostics.log(words);
        finishWork(); // what still runs ends with the process
    });
}

/// Saves and log lines that wait use services that go before the queues do, so they are done first.
/// A walk of a slow disk or a scan is not waited for: it only makes what the next start makes anew.
bool App::Parts::finishWork() {
    const auto walks = services->index.roots();
    for (const auto& root : walks)
        services->walker->abort(root);
    if (isResident)
        clipboard->end();
    return doors.work.finish(lastPatience);
}

int App::Parts::end(int status) {
    if (!finishWork()) {
        // What still runs uses what would be destroyed now.
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}

App::App(CommandLine commandLine, Environment environment, Seconds launchedAt)
    : parts_(std::make_unique<Parts>(std::move(commandLine), std::move(environment), launchedAt)) {}

App::~App() = default;

int App::run(char** argv) {
    const EndSignals signals([] { QCoreApplication::exit(0); });
    StartUp::run(parts_->hooks());
    parts_->outliveDisplay(argv);
    const int status = QCoreApplication::exec();
    return parts_->end(status);
}

} // namespace tessarine
