#pragma once

#include "LauncherCore/catalog/CatalogApp.h"
#include "launcherapp/platform/Subscription.h"

#include <string>
#include <vector>

namespace tessarine {

class AppCatalog;
class RunningApps;

/// The running applications in the order in which they were last brought forward.
/// Main thread only.
class RecentApps {
public:
    /// Begins with the running applications, the one in front first; as windows are told apart by
    /// what is installed, it does so when the catalog's first scan has published.
    RecentApps(RunningApps& running, AppCatalog& catalog);

    /// Desktop-file ids, most recent first; may hold ids that run no more.
    const std::vector<std::string>& order() const { return order_; }

    /// Those of `apps` that run, most recent first. Of equal ids in `apps` the last counts; an
    /// application that runs but isn't in `apps` is left out, and so is one without an id.
    std::vector<CatalogApp> recent(const std::vector<CatalogApp>& apps) const;

private:
    void begin();
    void bump(const std::string& bundleID);

    RunningApps& running_;
    std::vector<std::string> order_;
    Subscription firstScan_;
    Subscription activations_;
};

} // namespace tessarine
