#include "launcherapp/shell/AppServices.h"

#include "launcherapp/index/DemonstrationFiles.h"
#include "launcherapp/platform/linux/files/SystemZone.h"
#include "launcherapp/sources/DemonstrationAnswers.h"

#include <fmt/format.h>

#include <chrono>
#include <exception>
#include <utility>

namespace tessarine {

namespace {

/// Any thread.
double secondsRunning() {
    return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string preferencesPath(const Environment& environment) {
    return environment.configHome + "/tessarine/preferences.json";
}

} // namespace

AppServices::AppServices(AppDoors& appDoors,
                         Diagnostics& log,
                         const SupportDirectory& supportDirectory,
                         const Environment& runEnvironment,
                         AppRun appRun)
    : doors(appDoors), diagnostics(log), support(supportDirectory), environment(runEnvironment),
      run(appRun), defaults(doors.queue,
                            StateFile(doors.files,
                                      doors.work.serial("com.corvane.tessarine.preferences"),
                                      diagnostics,
                                      preferencesPath(environment),
                                      StateFile::Failures::logged),
                            diagnostics),
      catalog({.queue = doors.queue,
               .work = doors.work,
               .files = doors.files,
               .watcher = doors.watcher,
               .icons = doors.icons,
               .launcher = launcher,
               .running = running,
               .diagnostics = diagnostics},
              environment,
              run.isDemonstration ? AppCatalog::Content::demonstration
                                  : AppCatalog::Content::installed,
              [this] { return prefs.extraAppFolders(); }),
      walker(std::make_shared<IndexWalker>(doors.directories, secondsRunning)),
      index({.queue = doors.queue,
             .work = doors.work,
             .files = doors.files,
             .watcher = doors.trees,
             .diagnostics = diagnostics},
            walker,
            volumes,
            {.searchFolders = [this] { return prefs.searchFolders(); },
             .foldersOnlyRoots = [this] { return prefs.foldersOnlyRoots(); }},
            support.location() + "/index.json",
            run.index),
      listings(doors.queue,
               doors.work,
               run.isDemonstration ? demonstrationFolders() : doors.directories),
      opener({.queue = doors.queue,
              .catalog = catalog,
              .launcher = launcher,
              .types = *doors.fileTypes,
              .manager = doors.fileManager,
              .diagnostics = diagnostics}),
      usage(
          doors.queue,
          diagnostics,
          {.own = stateFile("usage.json"), .synced = stateFile("synced-usage.json")},
          [this] { return prefs.learnFromUse(); },
          [this](std::string_view id) { return !isUsersCommand || isUsersCommand(id); }),
      rates(doors.queue,
            doors.web,
            diagnostics,
            stateFile("rates.json"),
            rateProviders(),
            [this] { return prefs.rateSource(); }),
      zones(doors.queue,
            prefs,
            {.read = [this] { return home(); },
             .write =
                 [this](const std::string& zone) {
                     // A mode that ends by itself leaves the settings alone.
                     if (!run.endsByItself)
                         prefs.timeHome.set(zone);
                 }},
            [this, zone = SystemZone(environment.timeZone)] {
                return run.isDemonstration ? std::string(DemonstrationAnswers::zone)
                                           : zone.identifier();
            }),
      edits_(prefs.onChange([this](std::string_view key) { preferenceChanged(key); })) {}

void AppServices::preferenceChanged(std::string_view key) {
    if (key == prefs.searchFolders.key())
        index.rootsChanged();
    else if (key == prefs.foldersOnlyRoots.key())
        index.rebuild(FileIndex::Force::yes);
    else if (key == prefs.rateSource.key())
        rates.refreshIfStale(Rates::Force::no);
}

/// Of a save that fails nobody is told: the value in memory stays valid, and the next use of the
/// program saves it again.
StateFile AppServices::stateFile(const std::string& name) {
    return {doors.files,
            doors.work.serial("com.corvane.tessarine.state"),
            diagnostics,
            support.location() + "/" + name,
            StateFile::Failures::silent};
}

WindowList& AppServices::windows() {
    return run.isDemonstration ? cannedWindows : *doors.windows;
}

WindowControl& AppServices::windowControl() {
    return run.isDemonstration ? cannedControl : *doors.control;
}

SearchModel::Services AppServices::modelServices() {
    return {.queue = doors.queue,
            .diagnostics = diagnostics,
            .catalog = catalog,
            .prefs = prefs,
            .usage = usage};
}

/// Where rates are asked for; the preferences may name other servers that speak alike.
RateProviders AppServices::rateProviders() const {
    RateProviders providers;
    if (const auto address = prefs.ecbRatesAddress(); !address.empty())
        providers.ecb = {.address = address, .page = address};
    if (const auto address = prefs.openRatesAddress(); !address.empty())
        providers.open = {.address = address, .page = address};
    return providers;
}

/// A mode that ends by itself is answered from what the last run left, so it is there at once; a
/// demonstration's stores are empty.
bool AppServices::loadsAtOnce() const {
    return run.endsByItself || run.isDemonstration;
}

std::string AppServices::home() const {
    return run.isDemonstration ? std::string(DemonstrationAnswers::zone) : prefs.timeHome();
}

void AppServices::loadUsage() {
    if (loadsAtOnce())
        usage.load();
    else
        usage.loadLater();
    if (run.isDemonstration)
        usage.restoreLocal(DemonstrationAnswers::usage(doors.queue.now()));
}

void AppServices::loadCalculations() {
    calculations.emplace(
        doors.queue, stateFile("calc-history.json"), [this] { return prefs.calcHistoryEnabled(); });
    if (loadsAtOnce())
        calculations->load();
    else
        calculations->loadLater();
    if (run.isDemonstration) {
        for (auto& calculation : DemonstrationAnswers::calculations())
            calculations->record(std::move(calculation));
    }
    answers.emplace(AnswerService::Services{.queue = doors.queue,
                                            .prefs = prefs,
                                            .rates = rates,
                                            .zones = zones,
                                            .calculations = *calculations},
                    Formats::Locales{.numbers = environment.numbersLocale,
                                     .money = environment.moneyLocale,
                                     .dates = environment.datesLocale});
}

void AppServices::startRates() {
    if (loadsAtOnce())
        rates.load();
    else
        rates.start();
    if (run.isDemonstration)
        rates.show(DemonstrationAnswers::rates(doors.queue.now()));
}

void AppServices::openSettings() {
    const auto path = preferencesPath(environment);
    try {
        if (!doors.files.info(path))
            doors.files.save(path, "{}\n");
    } catch (const std::exception& error) {
        diagnostics.log(fmt::format("settings: {}", error.what()));
    }
    opener.open(path);
}

} // namespace tessarine
