#include "launcherapp/catalog/AppCatalog.h"

#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/AppScan.h"
#include "launcherapp/catalog/DemonstrationApps.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/Icons.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view genericSymbol = "app";

struct TimedScan {
    AppScan::Result result;
    double millis = 0;
};

} // namespace

AppCatalog::AppCatalog(Doors doors,
                       Environment environment,
                       Content content,
                       ExtraFolders extraFolders)
    : doors_(doors), environment_(std::move(environment)), content_(content),
      extraFolders_(std::move(extraFolders)),
      runningChanges_(doors_.running.onChanged([this] { runningCache_ = {}; })) {}

void AppCatalog::start() {
    requireMainThread(doors_.queue);
    if (content_ == Content::demonstration) {
        publish(demonstrationApps(), demonstrationRegistry(), 0);
        return;
    }
    rescan();
    // From the very start, so that no change falls between the first scan and its watch.
    watch(roots());
}

void AppCatalog::rescan() {
    requireMainThread(doors_.queue);
    if (content_ == Content::demonstration)
        return;
    const auto scan = ++scansStarted_;
    doors_.work.run(
        WorkPriority::userInitiated,
        [&files = doors_.files,
         &clock = std::as_const(doors_.queue),
         environment = environment_,
         folders = roots()] {
            const auto started = clock.uptime();
            auto result = AppScan::scan(files, environment, folders);
            const auto took = std::chrono::duration<double, std::milli>(clock.uptime() - started);
            return TimedScan{.result = std::move(result), .millis = took.count()};
        },
        [this, scan](TimedScan scanned) {
            if (scan != scansStarted_)
                return;
            const bool watchesOthers = watch(scanned.result.directories);
            publish(
                std::move(scanned.result.apps), std::move(scanned.result.registry), scanned.millis);
            // A change in a folder that was found by this scan may lie between its reading and
            // its watch.
            if (watchesOthers)
                scheduleRescan();
        });
}

Subscription AppCatalog::onPublished(std::function<void()> published) {
    return observers_.add(std::move(published));
}

std::vector<std::string> AppCatalog::roots() const {
    return AppScan::roots(environment_, extraFolders_());
}

Image AppCatalog::icon(const CatalogApp& app) {
    requireMainThread(doors_.queue);
    if (const auto kept = icons_.find(app.id); kept != icons_.end())
        return kept->second;
    const auto* installed = registry_->byPath(app.path);
    auto image = installed ? doors_.icons.icon(installed->icon, iconPoints) : std::nullopt;
    if (!image) {
        const auto own = demonstrationSymbol(app);
        image = doors_.icons.symbol(own.empty() ? genericSymbol : own, iconPoints);
    }
    return icons_.emplace(app.id, *std::move(image)).first->second;
}

void AppCatalog::launch(const CatalogApp& app) {
    requireMainThread(doors_.queue);
    const auto* installed = registry_->byPath(app.path);
    if (!installed) {
        doors_.diagnostics.log(fmt::format("launch failed for {}: it is not installed", app.name));
        return;
    }
    launch(
        *installed,
        [&diagnostics = doors_.diagnostics, name = app.name](std::optional<std::string> problem) {
            if (problem)
                diagnostics.log(fmt::format("launch failed for {}: {}", name, *problem));
        });
}

void AppCatalog::launch(const InstalledApp& application,
                        std::function<void(std::optional<std::string>)> done) {
    requireMainThread(doors_.queue);
    // A window that a desktop can't be asked about may be gone, or not come when it is called.
    if (const auto running = doors_.running.running(application.bundleID);
        running && doors_.running.ability().available) {
        doors_.running.unhide(*running);
        if (!application.busActivatable) {
            doors_.running.activate(*running);
            doors_.queue.post([done = std::move(done)] { done(std::nullopt); });
            return;
        }
        done = bringingForward(application.bundleID, std::move(done));
    }
    doors_.launcher.launch(application, {}, std::move(done));
}

/// One that the session bus activates knows better which of its windows to show, but need not be
/// let: some compositors only mark a window that asks to come forward. Then its newest one comes,
/// unless the user has gone elsewhere meanwhile.
std::function<void(std::optional<std::string>)>
AppCatalog::bringingForward(const std::string& bundleID,
                            std::function<void(std::optional<std::string>)> done) {
    return [this, bundleID, done = std::move(done), before = doors_.running.frontmost()](
               const std::optional<std::string>& problem) {
        if (!problem)
            doors_.queue.postAfter(forwardPatience, [this, bundleID, before] {
                const auto front = doors_.running.frontmost();
                const auto running = doors_.running.running(bundleID);
                if (running && front == before && front != bundleID)
                    doors_.running.activate(*running);
            });
        done(problem);
    };
}

const std::set<std::string>& AppCatalog::runningBundleIDs() {
    requireMainThread(doors_.queue);
    const auto now = doors_.queue.uptime();
    if (!runningCache_.at || now - *runningCache_.at >= runningLifetime) {
        runningCache_ = {.at = now};
        for (const auto& app : doors_.running.running())
            runningCache_.ids.insert(app.bundleID);
    }
    return runningCache_.ids;
}

void AppCatalog::publish(std::vector<CatalogApp> apps,
                         std::shared_ptr<const AppRegistry> registry,
                         double millis) {
    std::set<std::string_view> present;
    for (const auto& app : apps)
        present.insert(app.id);
    std::erase_if(icons_, [&](const auto& icon) { return !present.contains(icon.first); });
    apps_ = std::move(apps);
    registry_ = std::move(registry);
    lastScan_ = doors_.queue.now();
    lastScanMillis_ = millis;
    doors_.running.useRegistry(registry_);
    runningCache_ = {}; // it was matched to the registry before
    observers_.tell();
}

bool AppCatalog::watch(const std::vector<std::string>& directories) {
    if (directories == watched_)
        return false;
    const bool watchesOthers = !std::ranges::all_of(directories, [&](const std::string& directory) {
        return std::ranges::count(watched_, directory) > 0;
    });
    watched_ = directories;
    streams_ = doors_.watcher.watch(
        directories, watchLatency, [this](const DirectoryChanges&) { scheduleRescan(); });
    return watchesOthers;
}

void AppCatalog::scheduleRescan() {
    if (rescanPending_)
        return;
    rescanPending_ = true;
    doors_.queue.postAfter(rescanDelay, [this] {
        rescanPending_ = false;
        rescan();
    });
}

} // namespace tessarine
