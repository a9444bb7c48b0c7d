#include "launcherapp/commands/SettingsPaneScan.h"

#include "LauncherCore/commands/SettingsPanes.h"
#include "LauncherCore/text/Collation.h"
#include "launcherapp/catalog/AppScan.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view entryFolder = "/applications";

bool canListAny(const FileStore& files, const std::vector<std::string>& folders) {
    return std::ranges::any_of(
        folders, [&](const std::string& folder) { return files.entries(folder).has_value(); });
}

std::vector<CommandSpec> sortedByName(std::vector<CommandSpec> commands,
                                      const std::string& locale) {
    const Collation collation(locale);
    std::vector<std::pair<std::string, CommandSpec>> keyed;
    keyed.reserve(commands.size());
    for (auto& command : commands) {
        auto key = collation.sortKey(command.name);
        keyed.emplace_back(std::move(key), std::move(command));
    }
    std::ranges::sort(keyed, [](const auto& left, const auto& right) {
        return std::tie(left.first, left.second.id) < std::tie(right.first, right.second.id);
    });
    std::ranges::transform(
        keyed, commands.begin(), [](auto& pair) { return std::move(pair.second); });
    return commands;
}

} // namespace

SettingsPaneScan::Result SettingsPaneScan::scan(const FileStore& files,
                                                const Environment& environment,
                                                const AppRegistry& registry) {
    Result result;
    // The last is the one that the distribution's packages fill; those before it add to it.
    if (!environment.dataDirs.empty() && !canListAny(files, AppScan::roots(environment, {})))
        result.unreadable = environment.dataDirs.back() + std::string(entryFolder);
    const auto languages =
        desktopLanguages(environment.languagePriority, environment.messagesLocale);
    const Launchable::Session session{.currentDesktops = environment.desktops,
                                      .canExecute = [&](std::string_view program) {
                                          return AppScan::canExecute(files, environment, program);
                                      }};
    for (const auto& app : registry.apps()) {
        if (!SettingsPanes::opensPage(app.exec))
            continue;
        auto entry = AppScan::entryAt(files, app.path, languages);
        if (!entry)
            continue;
        auto command = SettingsPanes::command(
            {.entryID = app.bundleID, .path = app.path, .entry = *std::move(entry)},
            languages,
            session);
        if (command)
            result.panes.push_back(*std::move(command));
    }
    result.panes = sortedByName(std::move(result.panes), environment.collationLocale);
    return result;
}

} // namespace tessarine
