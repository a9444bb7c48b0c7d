#include "launcherapp/shell/modes/ShowModes.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/operations/Selftest.h"
#include "launcherapp/panel/PanelController.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/modes/Modes.h"
#include "launcherapp/shell/modes/PanelModes.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace tessarine {

namespace {

constexpr int notMeasured = static_cast<int>(SelftestResult::Verdict::notMeasured);
constexpr Seconds pollInterval{0.005};
constexpr int attempts = 2000; ///< of `pollInterval` each: ten seconds
constexpr std::size_t missesShown = 5;

PanelController* panelOf(const ModeContext& context) {
    return context.panel ? context.panel->panel : nullptr;
}

bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

std::vector<const CatalogApp*> withoutIcon(const AppCatalog& catalog) {
    std::vector<const CatalogApp*> missing;
    for (const auto& app : catalog.apps())
        if (!catalog.hasIcon(app))
            missing.push_back(&app);
    return missing;
}

void measureFirstShow(ModeContext& context) {
    const CatalogApp control{.id = "/Applications/__tessarine_control_no_such_app__.app"};
    if (context.catalog.hasIcon(control)) {
        context.print("NOT MEASURED: the control path counted as cached, so the miss counter "
                      "proves nothing");
        context.finish(1);
        return;
    }
    const auto published = context.queue.uptime() - context.launchedAt;
    const auto missing = withoutIcon(context.catalog);
    context.model.setQuery({});
    context.print(fmt::format(
        "first-show: catalog published {:.0f} ms after launch, {} apps, {} without a cached icon, "
        "empty recompute {:.2f} ms, {} rows (control: an absent path reads as a miss, so a zero "
        "here is a measurement)",
        std::chrono::duration<double, std::milli>(published).count(),
        context.catalog.apps().size(),
        missing.size(),
        context.model.lastMillis(),
        context.model.rows().size()));
    for (std::size_t i = 0; i < std::min(missing.size(), missesShown); ++i)
        context.print("  first miss: " + missing[i]->id);
    context.finish(0);
}

void awaitCatalog(ModeContext& context, int attempt) {
    if (context.catalog.lastScan()) {
        measureFirstShow(context);
        return;
    }
    if (attempt > attempts) {
        context.print("NOT MEASURED: the catalog never published in 10 s (load has not finished)");
        context.finish(1);
        return;
    }
    context.queue.postAfter(pollInterval,
                            [&context, attempt] { awaitCatalog(context, attempt + 1); });
}

} // namespace

void ShowModes::show(ModeContext& context, const std::string&) {
    if (auto* const panel = panelOf(context))
        panel->show();
    else
        context.print("show: NOT MEASURED, there is no display to show the panel on");
}

void ShowModes::selftestShow(ModeContext& context, const std::string&) {
    auto* const panel = panelOf(context);
    if (!panel) {
        context.print("selftest-show: NOT MEASURED, there is no display to show the panel on");
        context.finish(notMeasured);
        return;
    }
    const auto report = panel->selfTestShow();
    context.print("selftest-show: " + report);
    const bool passes =
        holds(report, "visible=true") && holds(report, "key=true") && !holds(report, "height=0");
    context.finish(passes ? 0 : 1);
}

void ShowModes::benchFirstShow(ModeContext& context, const std::string&) {
    awaitCatalog(context, 1);
}

} // namespace tessarine
