#pragma once

#include "LauncherCore/catalog/CatalogApp.h"
#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowVerbs.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What the rows of applications are made of.
struct AppRowSources {
    const std::vector<CatalogApp>& apps;
    const std::vector<std::string>& hidden; ///< application ids that are never offered
    const std::set<std::string>& running;   ///< desktop-file ids that get a running mark
    const RowVerbs& verbs;
};

/// Rows of the applications that `query` names, by name or alias, in the catalog's order.
std::vector<ResultRow> appRows(const AppRowSources& sources, std::string_view query);

/// The row of one application. Its icon is drawn when the row is, not here.
ResultRow appRow(const AppRowSources& sources, const CatalogApp& app);

/// Whether the user wants the application offered.
bool isOffered(const AppRowSources& sources, const CatalogApp& app);

} // namespace tessarine
