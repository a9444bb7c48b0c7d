#pragma once

#include "launcherapp/query/ResultRow.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AppCatalog;
struct CatalogApp;

/// Rows of the applications that `query` names, by name or alias, in the catalog's order.
/// `running` holds the desktop-file ids that get a running mark.
std::vector<ResultRow>
appRows(AppCatalog& catalog, const std::set<std::string>& running, std::string_view query);

/// The row of one application. Its icon is not drawn here but when the row is.
ResultRow appRow(AppCatalog& catalog, const CatalogApp& app, bool running);

} // namespace tessarine
