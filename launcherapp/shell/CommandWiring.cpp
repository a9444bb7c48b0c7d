#include "launcherapp/shell/CommandWiring.h"

#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/commands/CommandCatalog.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/ListCommands.h"
#include "launcherapp/index/FileIndex.h"
#include "launcherapp/platform/WindowList.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/CommandRows.h"
#include "launcherapp/query/rows/EngagedRows.h"
#include "launcherapp/shell/Prefs.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace tessarine {

CommandWiring::CommandWiring(Services services, std::function<FileRowSources()> fileRows)
    : services_(services), fileRows_(std::move(fileRows)) {
    wireVerbs();
    wireFamilies();
}

/// What leaves the panel takes it away first, so that what comes up has the screen and the keys.
void CommandWiring::wireVerbs() {
    auto& verbs = services_.model.verbs;
    verbs.runCommand = [this](const CommandSpec& command, const std::string& argument) {
        hidePanel();
        services_.runtime.run(command, argument);
    };
    verbs.editCommands = [this] {
        hidePanel();
        services_.opener.open(services_.store.location());
    };
    verbs.quitApp = [this](const CatalogApp& app) {
        if (app.bundleID)
            quit({.name = app.name, .bundleID = *app.bundleID}, WindowManager::Force::no);
    };
}

void CommandWiring::wireFamilies() {
    auto& families = services_.model.families;
    families.commands = [&catalog = services_.catalog] { return catalog.all(); };
    families.commandDetail = [&catalog = services_.catalog](const CommandSpec& command) {
        return catalog.detail(command);
    };
    families.commandsError = [&store = services_.store] { return store.error(); };
    families.isUserCommand = [&store = services_.store](const ResultRow& row) {
        return std::ranges::any_of(store.file().commands, [&](const CommandSpec& command) {
            return row.id == std::string(commandRowPrefix) + command.id;
        });
    };
    families.engaged = [this](const CommandSpec& command, std::string_view argument) {
        return engaged(command, argument);
    };
    families.windows = [this, sources = windowSources()](std::string_view query) {
        return windowRows(sources, query);
    };
}

Rows CommandWiring::engaged(const CommandSpec& command, std::string_view argument) {
    return command.kind == CommandKind::list ? listRows(command, argument)
                                             : foundFiles(command, argument);
}

/// The script runs beside the typing; what it prints is there when the list is made again.
Rows CommandWiring::listRows(const CommandSpec& command, std::string_view argument) {
    static_assert(ListCommands::mostRows == SearchModel::maximumRows);
    auto& model = services_.model;
    auto& lists = services_.lists;
    if (!lists.rows(command, argument))
        lists.request(command, std::string(argument), [&model, id = command.id] {
            if (model.engaged() && model.engaged()->id == id)
                model.recompute();
        });
    // One command for all of its rows: its script may be long.
    const auto shared = std::make_shared<const CommandSpec>(command);
    return listCommandRows(
        command, lists.rows(command, argument), [this, shared](const ListRow& row) {
            hidePanel();
            services_.lists.choose(*shared, row);
        });
}

Rows CommandWiring::foundFiles(const CommandSpec& command, std::string_view argument) const {
    const auto extensions = command.extensions.value_or(std::vector<std::string>());
    const auto found = services_.index.search({.query = argument,
                                               .foldersOnly = command.foldersOnly.value_or(false),
                                               .extensions = extensions,
                                               .limit = SearchModel::maximumRows},
                                              services_.usage.ranking());
    auto rows = collapseSameName(found, SearchModel::maximumRows, fileRows_());
    return rows.empty() ? Rows{emptyFileSearchRow(command, argument)} : rows;
}

WindowRowSources CommandWiring::windowSources() {
    const auto problem = [](const Ability& ability) {
        return ability.available ? std::nullopt : std::optional(ability.reason);
    };
    using Force = WindowManager::Force;
    return {
        .keywords = services_.prefs.keywords(),
        .movingProblem =
            [this, problem] {
                return problem(services_.windows.ability(services_.model.previousApp));
            },
        .apply =
            [this](WindowVerb verb) {
                hidePanel();
                services_.windows.apply(verb, services_.model.previousApp);
            },
        .quittingProblem =
            [problem, &windows = services_.windows] { return problem(windows.offer().ability); },
        .killingProblem =
            [problem, &windows = services_.windows] { return problem(windows.offer().killing); },
        .quittingGap = [&list = services_.list] { return list.gap(); },
        .runningApps = [&windows = services_.windows]() -> std::span<const QuittableApp> {
            return windows.offer().apps;
        },
        .quit = [this](const QuittableApp& app) { quit(app, Force::no); },
        .forceQuit = [this](const QuittableApp& app) { quit(app, Force::yes); }};
}

void CommandWiring::quit(const QuittableApp& app, WindowManager::Force force) {
    hidePanel();
    services_.windows.quit(app, force);
}

void CommandWiring::hidePanel() {
    const auto& dismiss = services_.model.dismiss;
    if (dismiss)
        dismiss();
}

} // namespace tessarine
