#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/catalog/CatalogApp.h"
#include "launcherapp/platform/WindowList.h"

#include <memory>
#include <string_view>
#include <vector>

namespace tessarine {

/// Invented applications for pictures and trials, in alphabetical order. Pure; any thread.
std::vector<CatalogApp> demonstrationApps();

/// What is known of them besides: their icons are names that every icon theme may have. None can
/// be started. Pure; any thread.
std::shared_ptr<const AppRegistry> demonstrationRegistry();

/// The symbol of the program's own that stands for such an application where the theme has no
/// icon of it; empty for any other application. Pure; any thread.
std::string_view demonstrationSymbol(const CatalogApp& app);

/// Windows of some of these applications, as if they were running. Which window is active, and
/// when that changes, is the desktop's own. Main thread only.
class DemonstrationWindows : public WindowList {
public:
    explicit DemonstrationWindows(WindowList& desktop) : desktop_(desktop) {}

    Ability ability() const override { return {}; }

    std::vector<AppWindow> windows() const override;

    std::optional<AppWindow> active() const override { return desktop_.active(); }

    Subscription onActiveChanged(std::function<void()> changed) override {
        return desktop_.onActiveChanged(std::move(changed));
    }

    void unhide(std::uint64_t) override {}

    void activate(std::uint64_t) override {}

private:
    WindowList& desktop_;
};

} // namespace tessarine
