#pragma once

#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowAction.h"
#include "launcherapp/query/RowVerbs.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What the menu of one row is made of. What an empty function would do is left out.
struct RowMenuSources {
    const RowVerbs& verbs;
    bool isFavorite = false;
    std::optional<CatalogApp> app; ///< when the row is an application
    bool appRuns = false;
    std::optional<std::string> folder; ///< when the row is a folder
    bool isUserCommand = false;        ///< of the user's own file
    std::function<void()> toggleFavorite;
    std::function<void()> hideApp;
    std::function<void()> showTwins; ///< empty unless the row has name twins that are not shown
    std::vector<RowAction> ofItsFamily = {}; ///< what the row's own source adds, last
};

/// The actions of a row, by its kind and the name space of its id.
std::vector<RowAction> rowActions(const ResultRow& row, const RowMenuSources& sources);

/// The actions of the panel itself, for when no row is meant.
std::vector<RowAction> panelActions(const RowVerbs& verbs, std::string_view productName);

} // namespace tessarine
