#include "launcherapp/shell/modes/QueryModes.h"

#include "LauncherCore/query/Matcher.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/index/FileIndex.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/rows/AppRows.h"
#include "launcherapp/query/rows/CommandRows.h"
#include "launcherapp/query/rows/WebRows.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/modes/IndexModes.h"
#include "launcherapp/shell/modes/Modes.h"
#include "launcherapp/sources/AnswerService.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr int benchRounds = 7;
constexpr int stageRounds = 20;
constexpr int notMeasured = 2;
constexpr double frameMillis = 16.0; ///< one frame at 60 Hz

double millisOf(const MainQueue& clock, const std::function<void()>& work) {
    const auto started = clock.uptime();
    work();
    return std::chrono::duration<double, std::milli>(clock.uptime() - started).count();
}

double medianMillis(const MainQueue& clock, int rounds, const std::function<void()>& work) {
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(rounds));
    for (int i = 0; i < rounds; ++i)
        times.push_back(millisOf(clock, work));
    std::ranges::sort(times);
    return times[times.size() / 2];
}

/// One timed part of a recompute; nothing for one whose source is not built yet.
struct Stage {
    std::string_view name;
    std::optional<double> millis;
    std::string_view needs;
};

std::vector<Stage> timedStages(ModeContext& context, const std::string& query) {
    const auto timed = [&](const std::function<void()>& work) {
        return std::optional(medianMillis(context.queue, stageRounds, work));
    };
    auto& model = context.model;
    const auto commands = rowsOf(model.families.commands);
    const CommandRowSources commandSources{.verbs = model.verbs,
                                           .detail = model.families.commandDetail};
    const std::set<std::string> running;
    const std::vector<std::string> hidden = context.prefs.hiddenApps();
    const AppRowSources apps{
        .apps = context.catalog.apps(), .hidden = hidden, .running = running, .verbs = model.verbs};
    const auto ifBuilt = [&](bool built, const std::function<void()>& work) {
        return built ? timed(work) : std::nullopt;
    };
    return {
        {"answers",
         ifBuilt(static_cast<bool>(model.families.answers),
                 [&] { (void)model.families.answers(query); }),
         "the answers are"},
        {"app scoring", timed([&] { (void)appRows(apps, query); }), {}},
        {"command scoring", timed([&] { (void)commandRows(commands, commandSources, query); }), {}},
        {"running bundle ids", timed([&] { (void)context.catalog.runningBundleIDs(); }), {}},
        {"looksLikeURL", timed([&] { (void)looksLikeURL(query); }), {}},
        {"fileIndex limit",
         ifBuilt(static_cast<bool>(model.families.files),
                 [&] { (void)model.families.files(query); }),
         "the file index is"},
        {"FULL recompute", timed([&] { model.recompute(); }), {}},
    };
}

/// The row that a favourite's id stands for; nothing while its source doesn't have it.
std::optional<ResultRow> favoriteRow(ModeContext& context, const std::string& id) {
    const std::set<std::string> running;
    const std::vector<std::string> hidden;
    const AppRowSources sources{.apps = context.catalog.apps(),
                                .hidden = hidden,
                                .running = running,
                                .verbs = context.model.verbs};
    const auto app = std::ranges::find(sources.apps, id, &CatalogApp::id);
    if (app != sources.apps.end())
        return appRow(sources, *app);
    for (const auto& command : rowsOf(context.model.families.commands)) {
        if (id == std::string(commandRowPrefix) + command.id)
            return commandRow(
                command,
                {.verbs = context.model.verbs, .detail = context.model.families.commandDetail});
    }
    return std::nullopt;
}

} // namespace

void QueryModes::bench(ModeContext& context, const std::string& query) {
    std::vector<double> times;
    for (int i = 0; i < benchRounds; ++i) {
        context.model.setQuery("");
        times.push_back(millisOf(context.queue, [&] { context.model.setQuery(query); }));
    }
    std::ranges::sort(times);
    const auto indexItems = context.indexing ? context.indexing->index.items()->size() : 0;
    context.print(fmt::format(
        "bench {}: median {:.2f} ms, best {:.2f} ms, rows {}, index {} items, catalog {} apps",
        query,
        times[times.size() / 2],
        times.front(),
        context.model.rows().size(),
        indexItems,
        context.catalog.apps().size()));
    context.finish(0);
}

void QueryModes::benchAnswers(ModeContext& context, const std::string& query) {
    if (!context.answers) {
        context.print("bench-answers: NOT MEASURED, no answers run here");
        context.finish(notMeasured);
        return;
    }
    constexpr int calls = 2000;
    std::optional<Answer> answer;
    const auto millis = millisOf(context.queue, [&] {
        for (int i = 0; i < calls; ++i)
            answer = context.answers->answer(query);
    });
    context.print(fmt::format("answers \"{}\": {:.3f} ms/call over {} calls -> {}",
                              query,
                              millis / calls,
                              calls,
                              answer ? answer->value : "no answer"));
    context.finish(0);
}

void QueryModes::benchStages(ModeContext& context, const std::string& query) {
    context.model.setQuery(query);
    const auto stages = timedStages(context, query);
    if (context.commandLine.has("--json")) {
        nlohmann::ordered_json object = nlohmann::ordered_json::object();
        for (const auto& stage : stages)
            object[std::string(stage.name)] =
                stage.millis ? nlohmann::ordered_json(*stage.millis) : nullptr;
        context.print(object.dump());
    } else {
        context.print(fmt::format("stages for \"{}\"", query));
        for (const auto& stage : stages)
            context.print(stage.millis
                              ? fmt::format("  {:<22} {:7.3f} ms", stage.name, *stage.millis)
                              : fmt::format("  {:<22} NOT MEASURED, {} not built yet",
                                            stage.name,
                                            stage.needs));
    }
    context.finish(0);
}

void QueryModes::benchFavorites(ModeContext& context, const std::string&) {
    double total = 0;
    double slowest = 0;
    std::string slowestName = "none";
    const auto& favorites = context.prefs.favorites();
    for (const auto& id : favorites) {
        std::optional<ResultRow> row;
        const double millis = millisOf(context.queue, [&] { row = favoriteRow(context, id); });
        const auto& titles = context.prefs.favoriteTitles();
        const auto title = titles.find(id);
        const auto name = row                     ? row->title
                          : title != titles.end() ? title->second + " (not loaded)"
                                                  : "(not loaded)";
        context.print(fmt::format("  {:7.2f} ms  {}  -> {}", millis, id, name));
        total += millis;
        if (millis > slowest) {
            slowest = millis;
            slowestName = id;
        }
    }
    context.print(fmt::format("bench-favorites: {} rows, {:.2f} ms total, slowest {:.2f} ms ({}). "
                              "Bar is 16 ms for the whole list.",
                              favorites.size(),
                              total,
                              slowest,
                              slowestName));
    constexpr Seconds laterReport{3};
    context.queue.postAfter(laterReport, [&context, slowest] {
        context.print("bench-favorites: NOT MEASURED whether contact favorites resolve off the "
                      "main thread, the contacts source is not built yet");
        context.finish(slowest > frameMillis ? 1 : 0);
    });
}

void QueryModes::actionsCheck(ModeContext& context, const std::string& query) {
    context.model.setQuery(query);
    const auto* row = context.model.selectedRow();
    if (!row) {
        context.print(fmt::format("actions-check: NOT MEASURED, no rows for \"{}\"", query));
        context.finish(1);
        return;
    }
    const auto title = row->title;
    context.model.openActions();
    const auto actions = context.model.actions();
    if (actions.empty()) {
        context.print("actions-check: FAILED, no menu");
        context.finish(1);
        return;
    }
    context.print(fmt::format("actions-check: row \"{}\", {} item(s)", title, actions.size()));
    bool hasFavorite = false;
    for (const auto& action : actions) {
        context.print("  " + (action.isSeparator() ? std::string("---") : action.title));
        hasFavorite |=
            action.title == "Add to Favorites" || action.title == "Remove from Favorites";
    }
    context.print(hasFavorite ? "favorite entry: present" : "favorite entry: MISSING");
    context.finish(0);
}

} // namespace tessarine
