#include "launcherapp/query/CreditResolver.h"

#include "LauncherCore/catalog/AppNaming.h"
#include "LauncherCore/catalog/AppRegistry.h"
#include "LauncherCore/catalog/DesktopEntry.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppScan.h"
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
constexpr std::string_view entryExtension = ".desktop";
constexpr std::string_view bundleExtension = ".app";

} // namespace

CreditResolver::CreditResolver(const AppCatalog& catalog,
                               Icons& icons,
                               const FileStore& files,
                               Environment environment)
    : catalog_(catalog), icons_(icons), files_(files), environment_(std::move(environment)) {}

const ResolvedCredit& CreditResolver::resolve(const RowCreditSpec& spec) {
    const auto known = resolved_.find(spec);
    // Before the first scan nothing is installed yet, so what was resolved then is resolved anew.
    const bool mayHaveArrived = catalog_.lastScan() && resolvedBeforeScan_.contains(spec);
    if (known != resolved_.end() && !mayHaveArrived)
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
        if (const auto* installed = registry.byPath(path))
            return {.name = installed->name, .icon = iconOf(installed->icon), .found = true};
        return credited(path);
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

ResolvedCredit CreditResolver::credited(const std::string& path) {
    // An entry that no root holds, or that another of its id hides, still has its own name.
    const auto& priority = environment_.languagePriority;
    const auto languages = desktopLanguages(priority, environment_.messagesLocale);
    if (path.ends_with(entryExtension)) {
        if (const auto entry = AppScan::entryAt(files_, path, languages)) {
            const auto names = AppNaming::names(*entry, path, "", languages);
            return {.name = names.name,
                    .icon = iconOf(entry->localized("Icon", languages).value_or("")),
                    .found = true};
        }
    }
    std::string name(Paths::lastPart(Paths::withoutEndSlashes(path)));
    if (name.size() > bundleExtension.size() && name.ends_with(bundleExtension))
        name.resize(name.size() - bundleExtension.size());
    return {.name = name.empty() ? path : name, .icon = iconOf(""), .found = true};
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
