#include "launcherapp/query/SearchModel.h"

#include "LauncherCore/text/Folding.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/query/rows/AppRows.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace tessarine {

SearchModel::SearchModel(AppCatalog& catalog) : catalog_(catalog) {}

void SearchModel::setQuery(std::string text) {
    query_ = std::move(text);
    recompute();
}

void SearchModel::recompute() {
    const auto query = Folding::trimmed(query_);
    std::vector<ResultRow> rows;
    if (!query.empty())
        rows = appRows(catalog_, catalog_.runningBundleIDs(), query);
    // Of equal scores the catalog's alphabet decides.
    std::ranges::stable_sort(rows, std::greater{}, &ResultRow::score);
    if (rows.size() > maximumRows)
        rows.erase(rows.begin() + maximumRows, rows.end());
    rows_ = std::move(rows);
}

} // namespace tessarine
