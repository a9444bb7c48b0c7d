#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/catalog/CatalogApp.h"
#include "launcherapp/platform/DirectoryWatcher.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/Image.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WorkQueues.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace tessarine {

class AppLauncher;
class Diagnostics;
class Icons;
class RunningApps;

/// The applications that the panel can launch by name: filled by a background scan of the desktop
/// entry folders, replaced whole by each scan, and kept fresh by watching those folders.
/// Empty until the first scan has published. Main thread only.
class AppCatalog {
public:
    static constexpr Seconds watchLatency{1.0};    ///< of the folder watch
    static constexpr Seconds rescanDelay{1.5};     ///< from a change to the scan it causes
    static constexpr Seconds runningLifetime{1.0}; ///< how long the running set is kept
    /// How long an application that the session bus has activated has to come forward by itself:
    /// programs ask for it before they answer the bus, and window managers take milliseconds.
    static constexpr Seconds forwardPatience{0.2};
    static constexpr int iconPoints = 32;

    enum class Content {
        installed,    ///< what this machine has
        demonstration ///< a fixed list, for pictures and trials; nothing is scanned or watched
    };

    struct Doors {
        MainQueue& queue;
        WorkQueues& work;
        const FileStore& files;
        DirectoryWatcher& watcher;
        Icons& icons;
        AppLauncher& launcher;
        RunningApps& running;
        Diagnostics& diagnostics;
    };

    /// The folders that the user has added, as the preferences have them now.
    using ExtraFolders = std::function<std::vector<std::string>()>;

    AppCatalog(Doors doors, Environment environment, Content content, ExtraFolders extraFolders);

    /// Once. Returns at once; the first scan publishes later.
    void start();

    /// Starts a scan in the background. One that is overtaken by a later scan is dropped.
    void rescan();

    const std::vector<CatalogApp>& apps() const { return apps_; }

    /// Everything the last scan found, handlers included; never null.
    const std::shared_ptr<const AppRegistry>& registry() const { return registry_; }

    /// When the last scan finished, in seconds since 1970, UTC; nothing before the first.
    std::optional<double> lastScan() const { return lastScan_; }

    /// How long the last scan took.
    double lastScanMillis() const { return lastScanMillis_; }

    /// Calls `published` after each time `apps` was replaced.
    Subscription onPublished(std::function<void()> published);

    /// The folders it looks in, best first.
    std::vector<std::string> roots() const;

    /// The icon of a row, drawn once per application and kept.
    Image icon(const CatalogApp& app);

    /// Whether `icon` would answer from what it keeps.
    bool hasIcon(const CatalogApp& app) const { return icons_.contains(app.id); }

    /// Brings the application forward if it runs, its minimised windows first; else starts it.
    /// A failure is logged.
    void launch(const CatalogApp& app);

    /// The same for any installed application. `done` is called once, later, with nothing on
    /// success, else with the problem in words.
    void launch(const InstalledApp& application,
                std::function<void(std::optional<std::string> problem)> done);

    /// Desktop-file ids of the running applications, at most `runningLifetime` old.
    const std::set<std::string>& runningBundleIDs();

private:
    void publish(std::vector<CatalogApp> apps,
                 std::shared_ptr<const AppRegistry> registry,
                 double millis);
    std::function<void(std::optional<std::string> problem)>
    bringingForward(const std::string& bundleID,
                    std::function<void(std::optional<std::string> problem)> done);
    /// Whether some are watched that were not before.
    bool watch(const std::vector<std::string>& directories);
    void scheduleRescan();

    struct RunningCache {
        std::optional<Seconds> at;
        std::set<std::string> ids;
    };

    Doors doors_;
    Environment environment_;
    Content content_;
    ExtraFolders extraFolders_;
    std::vector<CatalogApp> apps_;
    std::shared_ptr<const AppRegistry> registry_ = std::make_shared<const AppRegistry>();
    std::optional<double> lastScan_;
    double lastScanMillis_ = 0;
    std::unordered_map<std::string, Image> icons_;
    std::vector<std::string> watched_;
    Subscription streams_;
    bool rescanPending_ = false;
    std::uint64_t scansStarted_ = 0;
    RunningCache runningCache_;
    Subscription runningChanges_;
    Observers<> observers_;
};

} // namespace tessarine
