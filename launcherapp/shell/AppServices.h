#pragma once

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/DemonstrationApps.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/catalog/RecentApps.h"
#include "launcherapp/catalog/RunningApps.h"
#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/FolderListings.h"
#include "launcherapp/index/MountedVolumes.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/shell/AppDoors.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/SupportDirectory.h"
#include "launcherapp/sources/AnswerService.h"
#include "launcherapp/sources/CalcStore.h"
#include "launcherapp/sources/Rates.h"
#include "launcherapp/sources/ZoneStore.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// What kind of run it is.
struct AppRun {
    bool isDemonstration = false;
    bool endsByItself = false; ///< a mode was asked for: this is no resident copy
    FileIndex::Run index = FileIndex::Run::resident;
};

/// The services that every run has, over the doors; each refers to those above it. Making them
/// starts none. Main thread only; `App` has the one there is.
class AppServices {
public:
    AppServices(AppDoors& appDoors,
                Diagnostics& log,
                const SupportDirectory& supportDirectory,
                const Environment& runEnvironment,
                AppRun appRun);
    AppServices(const AppServices&) = delete;
    AppServices& operator=(const AppServices&) = delete;

    /// What was learned from use.
    void loadUsage();
    /// The history of calculations, and the answers that read it.
    void loadCalculations();
    void startRates();

    /// There is no window of settings: the file is made to be edited by hand.
    void openSettings();

    SearchModel::Services modelServices();

    /// Those that rows and commands are about: a demonstration touches none of the user's.
    WindowList& windows();
    WindowControl& windowControl();

    /// Whether the user has a command of this id; until it is set, any may be the user's.
    std::function<bool(std::string_view id)> isUsersCommand;

    AppDoors& doors;
    Diagnostics& diagnostics;
    const SupportDirectory& support;
    const Environment& environment;
    const AppRun run;

    DefaultsStore defaults;
    Prefs prefs{defaults, environment};
    DemonstrationWindows cannedWindows{*doors.windows};
    DemonstrationControl cannedControl{cannedWindows};
    RunningApps running{windows()};
    AppLauncher launcher{doors.queue, doors.processes, doors.bus, *doors.tokens, environment};
    AppCatalog catalog;
    std::shared_ptr<IndexWalker> walker;
    MountedVolumes volumes{doors.mounts, prefs, *walker, diagnostics};
    FileIndex index;
    FolderListings listings;
    FileOpener opener;
    UsageStore usage;
    SearchModel model{modelServices()};
    Rates rates;
    ZoneStore zones;
    CreditResolver credits{catalog, doors.files, environment};
    std::optional<RecentApps> recent;
    std::optional<CalcStore> calculations;
    std::optional<AnswerService> answers;

private:
    StateFile stateFile(const std::string& name);
    RateProviders rateProviders() const;
    bool loadsAtOnce() const;
    std::string home() const;
    void preferenceChanged(std::string_view key);

    Subscription edits_;
};

} // namespace tessarine
