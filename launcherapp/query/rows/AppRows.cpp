#include "launcherapp/query/rows/AppRows.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Urls.h"

#include <algorithm>

namespace tessarine {

namespace {

/// The best score of the name and the aliases; 0 when none of them is named.
std::int64_t bestScore(const Matcher::Query& query, const CatalogApp& app) {
    std::int64_t best = 0;
    const auto consider = [&](std::string_view candidate) {
        if (const auto match = query.score(candidate))
            best = std::max(best, match->score);
    };
    consider(app.name);
    for (const auto& alias : app.aliases)
        consider(alias);
    return best;
}

} // namespace

std::vector<ResultRow> appRows(const AppRowSources& sources, std::string_view query) {
    const Matcher::Query folded(query);
    std::vector<ResultRow> rows;
    for (const auto& app : sources.apps) {
        if (!isOffered(sources, app))
            continue;
        const auto score = bestScore(folded, app);
        if (score < 1)
            continue;
        auto row = appRow(sources, app);
        row.score = score;
        rows.push_back(std::move(row));
    }
    return rows;
}

ResultRow appRow(const AppRowSources& sources, const CatalogApp& app) {
    return {
        .id = app.id,
        .kind = RowKind::app,
        .title = app.name,
        .symbol = "app",
        .running = app.bundleID && sources.running.contains(*app.bundleID),
        .primary =
            [launch = sources.verbs.launchApp, app] {
                if (launch)
                    launch(app);
            },
        .primaryLabel = "open",
        .url = Urls::fileUrl(app.path),
        .group = std::string(RowGroup::apps),
    };
}

bool isOffered(const AppRowSources& sources, const CatalogApp& app) {
    return std::ranges::find(sources.hidden, app.id) == sources.hidden.end();
}

} // namespace tessarine
