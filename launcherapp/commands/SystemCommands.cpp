#include "launcherapp/commands/SystemCommands.h"

#include "LauncherCore/commands/BuiltinCommands.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/catalog/StandInApps.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/Alerts.h"
#include "launcherapp/platform/SystemEffects.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view settingsID = "com.apple.systempreferences";
constexpr std::string_view fileManagerID = "com.apple.finder";
constexpr std::string_view unsavedWork =
    "Apps will be asked to quit. Anything unsaved is yours to save first.";
constexpr std::string_view unsavedWorkUnasked =
    "Apps can't be asked to quit on this desktop. Anything unsaved is yours to save first.";

/// How long apps may take to quit, with the user answering their questions, before the session
/// goes on instead of ending.
constexpr Seconds quitPatience{60};
constexpr Seconds quitPoll{0.5};

/// What an action that asks first does once it is confirmed; the action itself for the others.
SystemAction withoutAsking(SystemAction action) {
    if (action == SystemAction::restart)
        return SystemAction::restartImmediately;
    if (action == SystemAction::shutDown)
        return SystemAction::shutDownImmediately;
    if (action == SystemAction::logOut)
        return SystemAction::logOutImmediately;
    return action;
}

bool isAboutTimeHome(SystemAction action) {
    return action == SystemAction::timeHomeHere || action == SystemAction::timeHomeClocks;
}

/// Nothing for an action that doesn't ask first.
std::optional<AlertQuestion> questionBefore(SystemAction action, std::string_view text) {
    const auto question = [&](std::string title, std::string confirm) {
        return AlertQuestion{
            .title = std::move(title), .text = std::string(text), .confirm = std::move(confirm)};
    };
    if (action == SystemAction::restart)
        return question("Restart this computer?", "Restart");
    if (action == SystemAction::shutDown)
        return question("Shut down this computer?", "Shut Down");
    if (action == SystemAction::logOut)
        return question("Log out?", "Log Out");
    return std::nullopt;
}

} // namespace

SystemCommands::SystemCommands(Services services, const Environment& environment)
    : services_(std::move(services)), environment_(environment),
      offered_(BuiltinCommands::actions()) {}

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
    if (action == SystemAction::quitAll)
        return services_.running.ability();
    if (action != SystemAction::forceQuitDialog)
        return services_.effects.ability(action);
    if (forceQuitQuery())
        return {};
    return Ability::missing(
        "the keyword that lists apps to force quit is switched off, or its word is another's");
}

std::string SystemCommands::subtitle(SystemAction action) const {
    const auto can = ability(action);
    return can.available ? std::string(SystemActions::plainEnglish(action))
                         : fmt::format("Can't be done here: {}", can.reason);
}

void SystemCommands::run(SystemAction action) {
    requireMainThread(services_.queue);
    if (const auto can = ability(action); !can.available)
        return fail(action, can.reason);
    const bool canAskApps = services_.running.ability().available;
    const auto asked = questionBefore(action, canAskApps ? unsavedWork : unsavedWorkUnasked);
    if (!asked)
        return carryOut(action);
    services_.alerts.ask(*asked,
                         [this, action, canAskApps, alive = std::weak_ptr(alive_)](bool confirmed) {
                             if (!confirmed || alive.expired())
                                 return;
                             if (!canAskApps)
                                 return carryOut(action);
                             askToQuit(runningApps());
                             whenAllQuit(action, services_.queue.uptime() + quitPatience);
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
    hasScanned_ = true;
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

void SystemCommands::carryOut(SystemAction action) {
    if (isAboutTimeHome(action))
        return setTimeHome(action);
    if (action == SystemAction::quitAll)
        return quitAll();
    if (action == SystemAction::forceQuitDialog)
        return services_.showPanel(forceQuitQuery().value_or(""));
    services_.effects.perform(
        withoutAsking(action),
        [this, action, alive = std::weak_ptr(alive_)](std::optional<std::string> problem) {
            if (problem && !alive.expired())
                fail(action, *problem);
        });
}

/// All but this program.
std::vector<QuittableApp> SystemCommands::runningApps() const {
    auto apps = services_.runningApps();
    std::erase_if(apps, [](const auto& app) { return app.bundleID == ProductInfo::bundleID; });
    return apps;
}

void SystemCommands::askToQuit(const std::vector<QuittableApp>& apps) const {
    std::ranges::for_each(apps, services_.askToQuit);
}

void SystemCommands::quitAll() {
    auto apps = runningApps();
    if (const auto* fileManager =
            StandInApps::application(*services_.catalog.registry(), fileManagerID))
        std::erase_if(apps, [&](const auto& app) { return app.bundleID == fileManager->bundleID; });
    askToQuit(apps);
}

/// What stays open has something to ask the user, so the session stays too.
void SystemCommands::whenAllQuit(SystemAction action, Seconds deadline) {
    const auto open = runningApps();
    if (open.empty())
        return carryOut(action);
    if (services_.queue.uptime() >= deadline) {
        std::vector<std::string> names;
        for (const auto& app : open)
            names.push_back(app.name.empty() ? app.bundleID : app.name);
        return fail(action, fmt::format("still open: {}", fmt::join(names, ", ")));
    }
    services_.queue.postAfter(quitPoll, [this, action, deadline, alive = std::weak_ptr(alive_)] {
        if (!alive.expired())
            whenAllQuit(action, deadline);
    });
}

void SystemCommands::setTimeHome(SystemAction action) {
    const bool isHere = action == SystemAction::timeHomeHere;
    services_.prefs.timeHomeFollowsMac.set(isHere);
    services_.diagnostics.log(isHere ? "time zones: home follows this Mac"
                                     : "time zones: home is the first clock");
}

void SystemCommands::fail(SystemAction action, const std::string& problem) {
    services_.diagnostics.log(fmt::format("system {}: {}", SystemActions::name(action), problem));
    services_.alerts.tell(std::string(SystemActions::title(action)),
                          fmt::format("This could not be done: {}", problem));
}

} // namespace tessarine
