#include "launcherapp/query/rows/AppRows.h"

#include "LauncherCore/catalog/CatalogApp.h"
#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"

#include <algorithm>

namespace tessarine {

namespace {

/// The best score of the name and the aliases; 0 when none of them is named.
std::int64_t bestScore(std::string_view query, const CatalogApp& app) {
    std::int64_t best = 0;
    const auto consider = [&](std::string_view candidate) {
        if (const auto match = Matcher::score(query, candidate))
            best = std::max(best, match->score);
    };
    consider(app.name);
    for (const auto& alias : app.aliases)
        consider(alias);
    return best;
}

} // namespace

std::vector<ResultRow>
appRows(AppCatalog& catalog, const std::set<std::string>& running, std::string_view query) {
    std::vector<ResultRow> rows;
    for (const auto& app : catalog.apps()) {
        const auto score = bestScore(query, app);
        if (score < 1)
            continue;
        auto row = appRow(catalog, app, app.bundleID && running.contains(*app.bundleID));
        row.score = score;
        rows.push_back(std::move(row));
    }
    return rows;
}

ResultRow appRow(AppCatalog& catalog, const CatalogApp& app, bool running) {
    return {
        .id = app.id,
        .kind = RowKind::app,
        .title = app.name,
        .symbol = "app",
        .running = running,
        .primary = [&catalog, app] { catalog.launch(app); },
        .primaryLabel = "open",
        .url = Urls::fileUrl(app.path),
        .group = std::string(RowGroup::apps),
    };
}

} // namespace tessarine
