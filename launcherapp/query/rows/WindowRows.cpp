#include "launcherapp/query/rows/WindowRows.h"

#include "LauncherCore/query/Matcher.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

/// As of a command's own word: above even an exact name of anything else.
constexpr std::int64_t wordScore = Matcher::exact + 1;

constexpr std::array verbWords{
    std::pair(BuiltinKeyword::windowLeft, WindowVerb::left),
    std::pair(BuiltinKeyword::windowRight, WindowVerb::right),
    std::pair(BuiltinKeyword::windowTop, WindowVerb::top),
    std::pair(BuiltinKeyword::windowBottom, WindowVerb::bottom),
    std::pair(BuiltinKeyword::windowMax, WindowVerb::max),
    std::pair(BuiltinKeyword::windowCenter, WindowVerb::center),
    std::pair(BuiltinKeyword::windowDisplay, WindowVerb::display),
};

std::optional<std::string> problemOf(const WindowRowSources::Problem& problem) {
    return problem ? problem() : std::nullopt;
}

ResultRow verbRow(const WindowRowSources& sources, WindowVerb verb) {
    ResultRow row{
        .id = "win:" + std::string(WindowVerbs::name(verb)),
        .kind = RowKind::command,
        .title = std::string(WindowVerbs::title(verb)),
        .subtitle = "the front window",
        .symbol = std::string(WindowVerbs::symbol(verb)),
        .primary = [apply = sources.apply, verb] { apply(verb); },
        .primaryLabel = "run",
        .group = std::string(RowGroup::commands),
        .score = wordScore,
    };
    if (const auto problem = problemOf(sources.movingProblem)) {
        row.subtitle = *problem;
        row.primary = sources.setUp ? sources.setUp : [] {};
        row.primaryLabel = sources.setUp ? "set up" : "";
    }
    return row;
}

/// What tells the rows of the two ways to quit apart.
struct QuitWay {
    BuiltinKeyword keyword;
    std::string_view idPrefix;
    std::string_view titlePrefix;
    std::string_view label;
    const std::function<void(const QuittableApp& app)>& quit;
};

/// In place of the applications, which this desktop doesn't tell.
ResultRow quittingProblemRow(const QuitWay& way, const std::string& problem) {
    return {
        .id = std::string(way.idPrefix),
        .kind = RowKind::hint,
        .title = std::string(Keywords::info(way.keyword).name),
        .subtitle = problem,
        .symbol = "power",
        .primary = [] {},
        .group = std::string(RowGroup::commands),
        .score = wordScore,
    };
}

ResultRow quitRow(const QuitWay& way, const QuittableApp& app, std::int64_t score) {
    return {
        .id = std::string(way.idPrefix) + app.bundleID,
        .kind = RowKind::command,
        .title = std::string(way.titlePrefix) + app.name,
        .symbol = "power",
        .primary = [quit = way.quit, app] { quit(app); },
        .primaryLabel = std::string(way.label),
        .group = std::string(RowGroup::commands),
        .score = score,
    };
}

std::vector<ResultRow>
quitRows(const WindowRowSources& sources, const QuitWay& way, std::string_view argument) {
    if (const auto problem = problemOf(sources.quittingProblem))
        return {quittingProblemRow(way, *problem)};
    const auto apps = sources.runningApps(argument);
    const auto score = argument.empty() ? Matcher::belowWordPrefix : wordScore;
    std::vector<ResultRow> rows;
    for (std::size_t i = 0; i < std::min(apps.size(), quitRowLimit); ++i)
        rows.push_back(quitRow(way, apps[i], score));
    return rows;
}

} // namespace

std::vector<ResultRow> windowRows(const WindowRowSources& sources, std::string_view query) {
    const std::array ways{
        QuitWay{BuiltinKeyword::quit, "quit:", "Quit ", "quit", sources.quit},
        QuitWay{BuiltinKeyword::forceQuit,
                "quit:force:",
                "Force quit ",
                "force quit",
                sources.forceQuit},
    };
    for (const auto& [keyword, verb] : verbWords) {
        const auto argument = sources.keywords.argument(keyword, query);
        if (argument && argument->empty() && sources.apply)
            return {verbRow(sources, verb)};
    }
    for (const auto& way : ways) {
        const auto argument = sources.keywords.argument(way.keyword, query);
        if (argument && way.quit && sources.runningApps)
            return quitRows(sources, way, *argument);
    }
    return {};
}

} // namespace tessarine
