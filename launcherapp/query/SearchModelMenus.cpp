// The two menus of the panel: the clipboard's filters and the actions of a row.

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/query/ActionsMenu.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/shell/ProductInfo.h"

#include <fmt/format.h>

#include <algorithm>

namespace tessarine {

namespace {

constexpr std::size_t fewestFilters = 2; ///< with fewer there is nothing to choose

} // namespace

bool SearchModel::canFilter() const {
    return filterMenu_.size() >= fewestFilters;
}

std::string SearchModel::filterTitle() const {
    if (!clipFilter_)
        return "Everything";
    const auto item = std::ranges::find(filterMenu_, *clipFilter_, &FilterMenuItem::key);
    return item == filterMenu_.end() ? rowsOf(families.filterTitle, *clipFilter_) : item->title;
}

/// The selection stays with its item, not with its place: clippings arrive while the menu is open.
void SearchModel::refreshFilterMenu() {
    const auto selected = filterMenuSelection_ < filterMenu_.size()
                              ? std::optional(filterMenu_[filterMenuSelection_].key)
                              : std::nullopt;
    filterMenu_ = rowsOf(families.filterMenu);
    const auto found = std::ranges::find(filterMenu_, selected, &FilterMenuItem::key);
    filterMenuSelection_ =
        found == filterMenu_.end() ? 0 : static_cast<std::size_t>(found - filterMenu_.begin());
}

/// On the first of the wanted that has a place in it, else on everything.
void SearchModel::openFilterMenu(std::span<const std::string> wanted) {
    refreshFilterMenu();
    filterMenuSelection_ = 0;
    for (const auto& key : wanted) {
        const auto found = std::ranges::find(filterMenu_, key, &FilterMenuItem::key);
        if (found == filterMenu_.end())
            continue;
        filterMenuSelection_ = static_cast<std::size_t>(found - filterMenu_.begin());
        break;
    }
    filterMenuOpen_ = true;
}

void SearchModel::filterMenuTab(TabDirection direction) {
    if (!canFilter())
        return;
    if (!filterMenuOpen_) {
        const std::string current = clipFilter_.value_or(std::string(FilterMenuItem::everything));
        openFilterMenu({&current, 1});
    } else {
        const auto count = filterMenu_.size();
        const auto step = direction == TabDirection::backward ? count - 1 : 1;
        filterMenuSelection_ = (filterMenuSelection_ + step) % count;
    }
    changed();
}

void SearchModel::moveFilterMenu(int delta) {
    const auto count = static_cast<int>(filterMenu_.size());
    if (count == 0)
        return;
    const auto wanted = static_cast<int>(filterMenuSelection_) + delta;
    filterMenuSelection_ = static_cast<std::size_t>(std::clamp(wanted, 0, count - 1));
    changed();
}

void SearchModel::commitFilterMenu(std::size_t index) {
    if (index < filterMenu_.size()) {
        const auto& key = filterMenu_[index].key;
        if (key == FilterMenuItem::everything)
            clipFilter_.reset();
        else
            clipFilter_ = key;
    }
    filterMenuOpen_ = false;
    recompute();
}

void SearchModel::openActions(std::optional<Point> at) {
    const auto* row = selectedRow();
    if (!row)
        return openPanelActions(at);
    const auto& prefs = services_.prefs;
    const auto& apps = services_.catalog.apps();
    RowMenuSources sources{.verbs = verbs,
                           .isFavorite = std::ranges::count(prefs.favorites(), row->id) > 0,
                           .folder = rowsOf(families.folderPath, *row),
                           .isUserCommand = rowsOf(families.isUserCommand, *row),
                           .toggleFavorite = [this] { toggleFavorite(); },
                           .ofItsFamily = rowsOf(families.menuActions, *row)};
    const auto app = std::ranges::find(apps, row->id, &CatalogApp::id);
    if (app != apps.end()) {
        sources.app = *app;
        sources.appRuns =
            app->bundleID && services_.catalog.runningBundleIDs().contains(*app->bundleID);
        sources.hideApp = [this, id = row->id] {
            auto hidden = services_.prefs.hiddenApps();
            hidden.push_back(id);
            services_.prefs.hiddenApps.set(std::move(hidden));
            recompute();
        };
    }
    if (row->sameNameKey && !expandedGroups_.contains(*row->sameNameKey))
        sources.showTwins = [this, key = *row->sameNameKey] { expandGroup(key); };
    actions_ = rowActions(*row, sources);
    actionSelection_ = 0;
    actionsRow_ = row->id;
    actionAnchor_ = at;
    changed();
}

void SearchModel::openPanelActions(std::optional<Point> at) {
    actions_ = panelActions(verbs, ProductInfo::name);
    actionSelection_ = 0;
    actionsRow_.reset();
    actionAnchor_ = at;
    changed();
}

void SearchModel::closeActions() {
    forgetActions();
    changed();
}

bool SearchModel::closeMenus() {
    if (actions_.empty() && !filterMenuOpen_)
        return false;
    filterMenuOpen_ = false;
    closeActions();
    return true;
}

void SearchModel::forgetActions() {
    actions_.clear();
    actionsRow_.reset();
    actionAnchor_.reset();
}

/// Its actions would run on a row that it doesn't name.
void SearchModel::forgetActionsOfAnotherRow() {
    const auto* row = selectedRow();
    if (actionsRow_ && (!row || row->id != *actionsRow_))
        forgetActions();
}

void SearchModel::moveAction(int delta) {
    const auto count = static_cast<int>(actions_.size());
    auto index = static_cast<int>(actionSelection_);
    for (int tried = 0; tried < count; ++tried) {
        index = ((index + delta) % count + count) % count;
        if (actions_[static_cast<std::size_t>(index)].canBeChosen())
            break;
    }
    actionSelection_ = static_cast<std::size_t>(index);
    changed();
}

void SearchModel::runAction(std::size_t index, ActionDriver driver) {
    if (index >= actions_.size() || !actions_[index].canBeChosen())
        return;
    const auto action = actions_[index];
    services_.diagnostics.log(fmt::format("action: {} (index {} of {}, selection {}, by {})",
                                          action.title,
                                          index,
                                          actions_.size(),
                                          actionSelection_,
                                          driver == ActionDriver::keyboard ? "keyboard" : "click"));
    // First, so that an action which opens a window leaves no menu behind it.
    closeActions();
    action.run();
}

bool SearchModel::closeMenu() {
    if (!actions_.empty()) {
        closeActions();
        return true;
    }
    if (!filterMenuOpen_)
        return false;
    filterMenuOpen_ = false;
    changed();
    return true;
}

} // namespace tessarine
