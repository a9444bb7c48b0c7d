#include "launcherapp/query/CreditResolver.h"

#include "LauncherCore/catalog/AppNaming.h"
#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/catalog/DesktopEntry.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppScan.h"
#include "launcherapp/catalog/StandInApps.h"

#include <optional>
#include <utility>
#include <variant>

namespace tessarine {

namespace {

constexpr auto missingSymbol = "app.dashed";
constexpr auto applicationSymbol = "app";
constexpr std::string_view computerIcon = "computer";
constexpr std::string_view entryExtension = ".desktop";
constexpr std::string_view bundleExtension = ".app";

} // namespace

CreditResolver::CreditResolver(const AppCatalog& catalog,
                               const FileStore& files,
                               Environment environment)
    : catalog_(catalog), files_(files), environment_(std::move(environment)) {}

/// Before the first scan nothing is installed yet, so what was resolved then is resolved anew.
bool CreditResolver::isResolved(const RowCreditSpec& spec) const {
    const bool mayHaveArrived = catalog_.lastScan() && resolvedBeforeScan_.contains(spec);
    return resolved_.contains(spec) && !mayHaveArrived;
}

const ResolvedCredit& CreditResolver::resolve(const RowCreditSpec& spec) {
    if (isResolved(spec))
        return resolved_.at(spec);
    if (catalog_.lastScan())
        resolvedBeforeScan_.erase(spec);
    else
        resolvedBeforeScan_.insert(spec);
    return resolved_.insert_or_assign(spec, compute(spec)).first->second;
}

const ResolvedCredit* CreditResolver::fromMemory(const RowCreditSpec& spec) {
    const bool isOnDisk = std::holds_alternative<RowCreditSpec::AppPath>(spec.value);
    return isOnDisk && !isResolved(spec) ? nullptr : &resolve(spec);
}

ResolvedCredit CreditResolver::compute(const RowCreditSpec& spec) {
    const AppRegistry& registry = *catalog_.registry();

    if (const auto* machine = std::get_if<RowCreditSpec::Machine>(&spec.value)) {
        return {.name = machine->name,
                .icon = std::string(computerIcon),
                .symbol = machine->symbol,
                .found = true};
    }
    if (const auto* onDisk = std::get_if<RowCreditSpec::AppPath>(&spec.value)) {
        const auto path = expandingTilde(environment_, onDisk->path);
        if (!files_.info(path))
            return missing(spec);
        if (const auto* installed = registry.byPath(path))
            return {.name = installed->name,
                    .icon = installed->icon,
                    .symbol = applicationSymbol,
                    .found = true};
        return credited(path);
    }
    if (const auto* url = std::get_if<RowCreditSpec::UrlHandler>(&spec.value)) {
        const auto* handler = registry.handlerForScheme(url->scheme);
        if (!handler)
            return missing(spec);
        return {.name = handler->name,
                .icon = handler->icon,
                .symbol = applicationSymbol,
                .found = true};
    }
    const auto& app = std::get<RowCreditSpec::App>(spec.value);
    for (const auto& id : app.bundleIDs) {
        if (const auto* installed = StandInApps::application(registry, id))
            return {.name = app.name,
                    .icon = installed->icon,
                    .symbol = applicationSymbol,
                    .found = true};
    }
    return missing(spec);
}

ResolvedCredit CreditResolver::credited(const std::string& path) {
    // An entry that no root holds, or that another of its id hides, still has its own name.
    const auto& priority = environment_.languagePriority;
    const auto languages = desktopLanguages(priority, environment_.messagesLocale);
    if (path.ends_with(entryExtension)) {
        if (const auto entry = AppScan::entryAt(files_, path, languages)) {
            const auto names = AppNaming::names(*entry, path, "", languages);
            return {.name = names.name,
                    .icon = entry->localized("Icon", languages).value_or(""),
                    .symbol = applicationSymbol,
                    .found = true};
        }
    }
    std::string name(Paths::lastPart(Paths::withoutEndSlashes(path)));
    if (name.size() > bundleExtension.size() && name.ends_with(bundleExtension))
        name.resize(name.size() - bundleExtension.size());
    return {
        .name = name.empty() ? path : name, .icon = "", .symbol = applicationSymbol, .found = true};
}

ResolvedCredit CreditResolver::missing(const RowCreditSpec& spec) {
    return {.name = spec.fallbackName(), .icon = "", .symbol = missingSymbol, .found = false};
}

} // namespace tessarine
