#include "launcherapp/catalog/RecentApps.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/RunningApps.h"

#include <algorithm>
#include <map>
#include <set>

namespace tessarine {

RecentApps::RecentApps(RunningApps& running, AppCatalog& catalog)
    : running_(running), firstScan_(catalog.onPublished([this] { begin(); })),
      activations_(running.onActivated([this](const std::string& bundleID) { bump(bundleID); })) {
    if (catalog.lastScan())
        begin();
}

std::vector<CatalogApp> RecentApps::recent(const std::vector<CatalogApp>& apps) const {
    std::set<std::string> runningIDs;
    for (const auto& app : running_.running())
        runningIDs.insert(app.bundleID);
    std::map<std::string, const CatalogApp*> byID;
    for (const auto& app : apps) {
        if (app.bundleID)
            byID[*app.bundleID] = &app;
    }
    std::vector<CatalogApp> result;
    for (const auto& bundleID : order_) {
        const auto app = byID.find(bundleID);
        if (app != byID.end() && runningIDs.contains(bundleID))
            result.push_back(*app->second);
    }
    return result;
}

void RecentApps::begin() {
    firstScan_.end();
    // What came forward meanwhile is more recent than what merely runs.
    for (const auto& app : running_.running()) {
        if (std::ranges::count(order_, app.bundleID) == 0)
            order_.push_back(app.bundleID);
    }
    if (const auto front = running_.frontmost())
        bump(*front);
}

void RecentApps::bump(const std::string& bundleID) {
    std::erase(order_, bundleID);
    order_.insert(order_.begin(), bundleID);
}

} // namespace tessarine
