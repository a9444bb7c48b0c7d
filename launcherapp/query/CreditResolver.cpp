#include "launcherapp/query/CreditResolver.h"

#include "LauncherCore/catalog/AppRegistry.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/StandInApps.h"
#include "launcherapp/platform/Icons.h"

#include <optional>
#include <utility>
#include <variant>

namespace tessarine {

namespace {

constexpr std::string_view missingSymbol = "app.dashed";
constexpr std::string_view applicationSymbol = "app";
constexpr std::string_view computerIcon = "computer";

} // namespace

CreditResolver::CreditResolver(const AppCatalog& catalog,
                               Icons& icons,
                               const FileStore& files,
                               Environment environment)
    : catalog_(catalog), icons_(icons), files_(files), environment_(std::move(environment)) {}

const ResolvedCredit& CreditResolver::resolve(const RowCreditSpec& spec) {
    const auto known = resolved_.find(spec);
    // Before the first scan nothing is installed yet, so what is missing then may be found later.
    const bool mayHaveArrived =
        known != resolved_.end() && !known->second.found && resolvedBeforeScan_.contains(spec);
    if (known != resolved_.end() && !(mayHaveArrived && catalog_.lastScan()))
        return known->second;
    if (catalog_.lastScan())
        resolvedBeforeScan_.erase(spec);
    else
        resolvedBeforeScan_.insert(spec);
    return resolved_.insert_or_assign(spec, compute(spec)).first->second;
}

ResolvedCredit CreditResolver::compute(const RowCreditSpec& spec) {
    const AppRegistry& registry = *catalog_.registry();

    if (const auto* machine = std::get_if<RowCreditSpec::Machine>(&spec.value)) {
        auto icon = icons_.icon(computerIcon, iconPoints);
        return {.name = machine->name,
                .icon = icon ? *std::move(icon) : icons_.symbol(machine->symbol, iconPoints),
                .found = true};
    }
    if (const auto* onDisk = std::get_if<RowCreditSpec::AppPath>(&spec.value)) {
        const auto path = expandingTilde(environment_, onDisk->path);
        if (!files_.info(path))
            return missing(spec);
        const auto* installed = registry.byPath(path);
        return {.name = installed ? installed->name : spec.fallbackName(),
                .icon = iconOf(installed ? installed->icon : ""),
                .found = true};
    }
    if (const auto* url = std::get_if<RowCreditSpec::UrlHandler>(&spec.value)) {
        const auto* handler = registry.handlerForScheme(url->scheme);
        if (!handler)
            return missing(spec);
        return {.name = handler->name, .icon = iconOf(handler->icon), .found = true};
    }
    const auto& app = std::get<RowCreditSpec::App>(spec.value);
    for (const auto& id : app.bundleIDs) {
        if (const auto* installed = StandInApps::application(registry, id))
            return {.name = app.name, .icon = iconOf(installed->icon), .found = true};
    }
    return missing(spec);
}

ResolvedCredit CreditResolver::missing(const RowCreditSpec& spec) {
    return {.name = spec.fallbackName(),
            .icon = icons_.symbol(missingSymbol, iconPoints),
            .found = false};
}

Image CreditResolver::iconOf(const std::string& themeNameOrPath) {
    if (auto icon = icons_.icon(themeNameOrPath, iconPoints))
        return *std::move(icon);
    return icons_.symbol(applicationSymbol, iconPoints);
}

} // namespace tessarine
