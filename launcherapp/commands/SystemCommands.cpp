#include "launcherapp/commands/SystemCommands.h"

#include "LauncherCore/commands/BuiltinCommands.h"
#include "LauncherCore/commands/SettingsPanes.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/catalog/StandInApps.h"
#include "launcherapp/commands/SessionQuestions.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/Alerts.h"
#include "launcherapp/platform/SystemEffects.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view settingsID = "com.apple.systempreferences";
constexpr std::string_view fileManagerID = "com.apple.finder";
constexpr std::string_view takenBack = "it was taken back";

bool isAboutTimeHome(SystemAction action) {
    return action == SystemAction::timeHomeHere || action == SystemAction::timeHomeClocks;
}

/// Actions whose failure can't be seen, so that the user would walk away from an open session, a
/// computer that runs, or a drive that is being written.
constexpr auto seemDone = std::to_array<SystemAction>({
    SystemAction::eject,
    SystemAction::lockScreen,
    SystemAction::sleep,
    SystemAction::emptyTrash,
    SystemAction::restart,
    SystemAction::shutDown,
    SystemAction::logOut,
    SystemAction::restartImmediately,
    SystemAction::shutDownImmediately,
    SystemAction::logOutImmediately,
});

/// Entries of the pages where a desktop keeps light and dark, or what follows the time of day; the
/// nearest first.
constexpr auto appearancePages = std::to_array<std::string_view>({
    "gnome-background-panel",
    "kcm_lookandfeel",
    "kcm_nightlight",
    "kcm_nightcolor",
});

} // namespace

SystemCommands::SystemCommands(Services services, const Environment& environment)
    : services_(std::move(services)), environment_(environment),
      offered_(BuiltinCommands::actions()), closing_({.queue = services_.queue,
                                                      .alerts = services_.alerts,
                                                      .openWindows = services_.openWindows,
                                                      .close = services_.closeWindow}) {}

void SystemCommands::start() {
    requireMainThread(services_.queue);
    watches_.push_back(services_.effects.onChange([this] { changes_.tell(); }));
    watches_.push_back(services_.catalog.onPublished([this] { scanPanes(); }));
    services_.effects.start();
    if (services_.catalog.lastScan())
        scanPanes();
}

std::vector<CommandSpec>
SystemCommands::available(std::span<const CommandSpec> userCommands) const {
    return BuiltinCommands::available(offered_, userCommands);
}

std::vector<CommandSpec>
SystemCommands::inheriting(std::span<const CommandSpec> userCommands) const {
    return BuiltinCommands::inheriting(BuiltinCommands::actions(), userCommands);
}

Ability SystemCommands::ability(SystemAction action) const {
    if (isAboutTimeHome(action))
        return {};
    if (action == SystemAction::autoAppearance && appearancePane())
        return {};
    const bool isAboutApps =
        action == SystemAction::quitAll || action == SystemAction::forceQuitDialog;
    if (!isAboutApps)
        return services_.effects.ability(action);
    auto apps = services_.running.ability();
    if (!apps.available || action == SystemAction::quitAll || forceQuitQuery())
        return apps;
    return Ability::missing(
        "the keyword that lists apps to force quit is switched off, or its word is another's");
}

std::string SystemCommands::subtitle(SystemAction action) const {
    if (const auto can = ability(action); !can.available)
        return fmt::format("Can't be done here: {}", can.reason);
    const std::string own(SystemActions::plainEnglish(action));
    if (isAboutTimeHome(action) || action == SystemAction::quitAll ||
        action == SystemAction::forceQuitDialog)
        return own;
    if (!services_.effects.ability(action).available)
        return fmt::format("Opens {} in the settings; there is no switch for it here",
                           appearancePane()->name);
    const auto manner = services_.effects.manner(action);
    if (manner.line)
        return *manner.line;
    const auto* const question = SessionQuestions::of(action);
    const bool asksNobody =
        question && manner.farewell == Farewell::none && !services_.running.ability().available;
    return asksNobody ? std::string(question->unaskedLine) : own;
}

void SystemCommands::run(SystemAction action, Done done) {
    requireMainThread(services_.queue);
    if (const auto can = ability(action); !can.available) {
        fail(action, can.reason, Telling::always);
        return finish(std::move(done), can.reason);
    }
    const bool isAskedHere = SessionQuestions::of(action) &&
                             services_.effects.manner(action).farewell != Farewell::userAndApps;
    if (isAskedHere)
        askFirst(action, std::move(done));
    else
        carryOut(action, std::move(done));
}

void SystemCommands::askFirst(SystemAction action, Done done) {
    closing_.takeBack();
    using SessionQuestions::Apps;
    const auto& question = *SessionQuestions::of(action);
    const bool asksApps = services_.effects.manner(action).farewell == Farewell::apps ||
                          services_.running.ability().available;
    services_.alerts.ask(
        SessionQuestions::alert(question, asksApps ? Apps::asked : Apps::notAsked),
        [this, action, done = std::move(done), alive = std::weak_ptr(alive_)](bool isConfirmed) {
            if (alive.expired())
                return;
            if (isConfirmed)
                confirmed(action, done);
            else
                finish(done, std::string(takenBack));
        });
}

/// What stays open has something to ask the user, so the session stays too.
void SystemCommands::confirmed(SystemAction action, Done done) {
    closing_.takeBack(); // of another question that was open beside this one
    if (services_.effects.manner(action).farewell == Farewell::apps)
        return perform(action, action, std::move(done));
    const auto immediately = SessionQuestions::of(action)->immediately;
    if (!services_.running.ability().available)
        return perform(action, immediately, std::move(done));
    closing_.start([this, action, immediately, done = std::move(done)](
                       ClosingWindows::End end, const std::vector<std::string>& open) {
        if (end == ClosingWindows::End::closed)
            return perform(action, immediately, done);
        if (end == ClosingWindows::End::takenBack)
            return finish(done, std::string(takenBack));
        const auto problem = fmt::format("still open: {}", fmt::join(open, ", "));
        fail(action, problem, Telling::always);
        finish(done, problem);
    });
}

Subscription SystemCommands::onChange(std::function<void()> changed) {
    return changes_.add(std::move(changed));
}

void SystemCommands::scanPanes() {
    const auto scan = ++scans_;
    services_.work.run(
        WorkPriority::utility,
        [&files = services_.files,
         environment = environment_,
         registry = services_.catalog.registry()] {
            return SettingsPaneScan::scan(files, environment, *registry);
        },
        [this, scan, alive = std::weak_ptr(alive_)](SettingsPaneScan::Result scanned) {
            if (!alive.expired() && scan == scans_)
                publish(std::move(scanned));
        });
}

void SystemCommands::publish(SettingsPaneScan::Result scanned) {
    const auto& actions = BuiltinCommands::actions();
    logOnce(
        scanned.unreadable
            ? fmt::format("{} is unreadable; no Settings panes", *scanned.unreadable)
            : fmt::format("{} actions + {} settings panes", actions.size(), scanned.panes.size()));
    offered_ = actions;
    if (auto settings = settingsCommand())
        offered_.push_back(*std::move(settings));
    std::ranges::move(scanned.panes, std::back_inserter(offered_));
    changes_.tell();
}

/// A program that is installed while one runs starts a scan each, and few of them change this.
void SystemCommands::logOnce(std::string line) {
    if (line == lastLine_)
        return;
    services_.diagnostics.log("system commands: " + line);
    lastLine_ = std::move(line);
}

/// One that isn't listed is another desktop's, and refuses to run here.
std::optional<CommandSpec> SystemCommands::settingsCommand() const {
    const auto* app = StandInApps::application(*services_.catalog.registry(), settingsID);
    return app && app->listed ? std::optional(BuiltinCommands::settings(app->path)) : std::nullopt;
}

/// What lists the apps that can be force quit when it is typed; nothing when it wouldn't.
std::optional<std::string> SystemCommands::forceQuitQuery() const {
    const auto& keywords = services_.prefs.keywords();
    auto query = keywords.word(BuiltinKeyword::forceQuit) + " ";
    if (!keywords.argument(BuiltinKeyword::forceQuit, query))
        return std::nullopt;
    return query;
}

/// The page of the settings that comes nearest to automatic appearance; null without one.
const CommandSpec* SystemCommands::appearancePane() const {
    for (const auto page : appearancePages) {
        const auto id = std::string(SettingsPanes::idPrefix) + std::string(page);
        const auto pane = std::ranges::find(offered_, id, &CommandSpec::id);
        if (pane != offered_.end())
            return &*pane;
    }
    return nullptr;
}

void SystemCommands::carryOut(SystemAction action, Done done) {
    const bool isOwn = isAboutTimeHome(action) || action == SystemAction::quitAll ||
                       action == SystemAction::forceQuitDialog;
    if (!isOwn && services_.effects.ability(action).available)
        return perform(action, action, std::move(done));
    if (!isOwn)
        return openPane(*appearancePane(), std::move(done));
    if (isAboutTimeHome(action))
        setTimeHome(action);
    else if (action == SystemAction::quitAll)
        quitAll();
    else
        services_.showPanel(forceQuitQuery().value_or(""));
    finish(std::move(done), std::nullopt);
}

/// `performed` is the immediate form of an action that has asked.
void SystemCommands::perform(SystemAction action, SystemAction performed, Done done) {
    services_.effects.perform(performed,
                              [this, action, done = std::move(done), alive = std::weak_ptr(alive_)](
                                  std::optional<std::string> problem) {
                                  if (alive.expired())
                                      return;
                                  if (problem)
                                      fail(action, *problem, Telling::ifItSeemsDone);
                                  if (done)
                                      done(std::move(problem));
                              });
}

void SystemCommands::openPane(const CommandSpec& pane, Done done) {
    const auto* app = services_.catalog.registry()->byPath(pane.path.value_or(""));
    if (!app)
        return finish(std::move(done), pane.name + " has been removed");
    services_.catalog.launch(
        *app,
        [this, done = std::move(done), alive = std::weak_ptr(alive_)](
            std::optional<std::string> problem) {
            if (alive.expired())
                return;
            if (problem)
                fail(SystemAction::autoAppearance, *problem, Telling::ifItSeemsDone);
            finish(done, std::move(problem));
        });
}

void SystemCommands::quitAll() {
    auto windows = services_.openWindows();
    if (const auto* fileManager =
            StandInApps::application(*services_.catalog.registry(), fileManagerID))
        std::erase_if(windows,
                      [&](const auto& window) { return window.bundleID == fileManager->bundleID; });
    for (const auto& window : windows)
        services_.closeWindow(window.id);
    services_.diagnostics.log(
        fmt::format("system quitAll: {} window(s) asked to close", windows.size()));
}

void SystemCommands::setTimeHome(SystemAction action) {
    const bool isHere = action == SystemAction::timeHomeHere;
    services_.prefs.timeHomeFollowsMac.set(isHere);
    services_.diagnostics.log(isHere ? "time zones: home follows this Mac"
                                     : "time zones: home is the first clock");
}

void SystemCommands::fail(SystemAction action, const std::string& problem, Telling telling) {
    services_.diagnostics.log(fmt::format("system {}: {}", SystemActions::name(action), problem));
    if (telling == Telling::always || std::ranges::count(seemDone, action) > 0)
        services_.alerts.tell(std::string(SystemActions::title(action)),
                              fmt::format("This could not be done: {}", problem));
}

void SystemCommands::finish(Done done, std::optional<std::string> problem) {
    if (!done)
        return;
    services_.queue.post(
        [done = std::move(done), problem = std::move(problem), alive = std::weak_ptr(alive_)] {
            if (!alive.expired())
                done(problem);
        });
}

} // namespace tessarine
