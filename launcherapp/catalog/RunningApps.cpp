#include "launcherapp/catalog/RunningApps.h"

#include <algorithm>
#include <utility>

namespace tessarine {

RunningApps::RunningApps(WindowList& windows)
    : windows_(windows), registry_(std::make_shared<const AppRegistry>()) {}

void RunningApps::useRegistry(std::shared_ptr<const AppRegistry> registry) {
    registry_ = std::move(registry);
}

Ability RunningApps::ability() const {
    return windows_.ability();
}

std::vector<RunningApp> RunningApps::running(Certainty certainty) const {
    std::vector<RunningApp> apps;
    for (const auto& window : windows_.windows()) {
        const auto bundleID = window.ordinary ? owner(window, certainty) : std::nullopt;
        if (!bundleID)
            continue;
        auto app = std::ranges::find(apps, *bundleID, &RunningApp::bundleID);
        if (app == apps.end())
            app = apps.insert(apps.end(), {.bundleID = *bundleID});
        app->windows.push_back(window.id);
        if (window.hidden)
            app->hidden.push_back(window.id);
        if (window.processID != 0 && std::ranges::count(app->processes, window.processID) == 0)
            app->processes.push_back(window.processID);
    }
    return apps;
}

std::optional<RunningApp> RunningApps::running(const std::string& bundleID,
                                               Certainty certainty) const {
    auto apps = running(certainty);
    const auto found = std::ranges::find(apps, bundleID, &RunningApp::bundleID);
    return found == apps.end() ? std::nullopt : std::optional(std::move(*found));
}

std::optional<std::string> RunningApps::frontmost() const {
    const auto window = windows_.active();
    return window ? owner(*window) : std::nullopt;
}

Subscription RunningApps::onActivated(std::function<void(const std::string&)> activated) {
    return windows_.onActiveChanged([this, activated = std::move(activated)] {
        if (const auto bundleID = frontmost())
            activated(*bundleID);
    });
}

Subscription RunningApps::onChanged(std::function<void()> changed) {
    return windows_.onListChanged(std::move(changed));
}

void RunningApps::unhide(const RunningApp& app) {
    for (const auto window : app.hidden)
        windows_.unhide(window);
}

void RunningApps::activate(const RunningApp& app) {
    if (!app.windows.empty())
        windows_.activate(app.windows.back());
}

std::optional<std::string> RunningApps::owner(const AppWindow& window, Certainty certainty) const {
    const auto* app = registry_->windowOwner({.applicationID = window.applicationID,
                                              .className = window.className,
                                              .instanceName = window.instanceName,
                                              .executable = window.executable},
                                             certainty);
    return app ? std::optional(app->bundleID) : std::nullopt;
}

} // namespace tessarine
