#include "launcherapp/query/rows/WindowRows.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/query/rows/HintRows.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

/// As of a command's own word: above even an exact name of anything else.
constexpr std::int64_t wordScore = Matcher::exact + 1;

std::optional<std::string> answerOf(const WindowRowSources::Problem& problem) {
    return problem ? problem() : std::nullopt;
}

ResultRow
hint(std::string id, std::string_view title, std::string reason, std::string_view symbol) {
    auto row = readHint(std::move(id), std::string(title), std::move(reason), symbol);
    row.group = RowGroup::commands;
    row.score = wordScore;
    return row;
}

ResultRow verbRow(const WindowRowSources& sources, WindowVerb verb) {
    auto id = "win:" + std::string(WindowVerbs::name(verb));
    if (auto problem = answerOf(sources.movingProblem))
        return hint(std::move(id),
                    WindowVerbs::title(verb),
                    *std::move(problem),
                    WindowVerbs::symbol(verb));
    return {
        .id = std::move(id),
        .kind = RowKind::command,
        .title = std::string(WindowVerbs::title(verb)),
        .subtitle = "the front window",
        .symbol = std::string(WindowVerbs::symbol(verb)),
        .primary = [apply = sources.apply, verb] { apply(verb); },
        .primaryLabel = "run",
        .group = std::string(RowGroup::commands),
        .score = wordScore,
    };
}

constexpr std::string_view quitSymbol = "power";

/// What tells the rows of the two ways to quit apart.
struct QuitVerb {
    BuiltinKeyword keyword;
    std::string_view idPrefix;
    std::string_view titlePrefix;
    std::string_view label;
    const std::function<void(const QuittableApp& app)>& quit;
};

/// What is to be known of an application before Return: which of two of one name it is, and what
/// else ends.
std::string
detail(const QuitVerb& verb, const QuittableApp& app, std::span<const QuittableApp> running) {
    std::vector<std::string> parts;
    if (std::ranges::count(running, app.name, &QuittableApp::name) > 1)
        parts.push_back(app.bundleID);
    if (verb.keyword == BuiltinKeyword::forceQuit && !app.alsoEnds.empty())
        parts.push_back(fmt::format("also ends {}", fmt::join(app.alsoEnds, ", ")));
    return fmt::format("{}", fmt::join(parts, " · "));
}

ResultRow quitRow(const QuitVerb& verb, const QuittableApp& app, std::string detail) {
    return {
        .id = std::string(verb.idPrefix) + app.bundleID,
        .kind = RowKind::command,
        .title = std::string(verb.titlePrefix) + app.name,
        .subtitle = std::move(detail),
        .symbol = std::string(quitSymbol),
        .primary = [quit = verb.quit, app] { quit(app); },
        .primaryLabel = std::string(verb.label),
        .group = std::string(RowGroup::commands),
    };
}

std::optional<std::string> problemOf(const WindowRowSources& sources, const QuitVerb& verb) {
    auto problem = answerOf(sources.quittingProblem);
    if (!problem && verb.keyword == BuiltinKeyword::forceQuit)
        problem = answerOf(sources.killingProblem);
    return problem;
}

std::vector<ResultRow>
quitRows(const WindowRowSources& sources, const QuitVerb& verb, std::string_view argument) {
    if (auto problem = problemOf(sources, verb))
        return {hint(std::string(verb.idPrefix),
                     Keywords::info(verb.keyword).name,
                     *std::move(problem),
                     quitSymbol)};
    const auto wanted = Folding::lowercase(argument);
    const auto running = sources.runningApps();
    std::vector<ResultRow> rows;
    for (const auto& app : running) {
        if (rows.size() == quitRowLimit)
            break;
        if (Folding::lowercase(app.name).find(wanted) == std::string::npos)
            continue;
        auto& row = rows.emplace_back(quitRow(verb, app, detail(verb, app, running)));
        row.score = argument.empty() ? Matcher::belowWordPrefix : wordScore;
    }
    if (auto gap = answerOf(sources.quittingGap)) {
        auto& row = rows.emplace_back(hint(std::string(verb.idPrefix),
                                           "Not all that runs is listed",
                                           *std::move(gap),
                                           quitSymbol));
        row.score = Matcher::belowWordPrefix;
    }
    return rows;
}

} // namespace

std::vector<ResultRow> windowRows(const WindowRowSources& sources, std::string_view query) {
    const std::array quitVerbs{
        QuitVerb{BuiltinKeyword::quit, "quit:", "Quit ", "quit", sources.quit},
        QuitVerb{BuiltinKeyword::forceQuit,
                 "quit:force:",
                 "Force quit ",
                 "force quit",
                 sources.forceQuit},
    };
    for (const auto& info : Keywords::all()) {
        const auto verb = sources.apply ? windowVerb(info.keyword) : std::nullopt;
        const auto argument = verb ? sources.keywords.argument(info.keyword, query) : std::nullopt;
        if (argument && argument->empty())
            return {verbRow(sources, *verb)};
    }
    for (const auto& verb : quitVerbs) {
        const auto argument = sources.keywords.argument(verb.keyword, query);
        if (argument && verb.quit && sources.runningApps)
            return quitRows(sources, verb, *argument);
    }
    return {};
}

} // namespace tessarine
