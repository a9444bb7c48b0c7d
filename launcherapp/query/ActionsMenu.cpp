#include "launcherapp/query/ActionsMenu.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/query/rows/CommandRows.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessarine {

namespace {

/// The menu as it grows; what can't be done is not added.
class Menu {
public:
    template <typename... Arguments>
    void add(const std::string& title,
             std::string_view symbol,
             const std::function<void(Arguments...)>& verb,
             std::decay_t<Arguments>... arguments) {
        if (!verb)
            return;
        auto action =
            RowAction::make(title, [verb, ... held = std::move(arguments)] { verb(held...); });
        if (!symbol.empty())
            action.symbol = symbol;
        actions_.push_back(std::move(action));
    }

    void addDestructive(const std::string& title,
                        std::string_view symbol,
                        const std::function<void(const std::string&)>& verb,
                        const std::string& argument) {
        const auto before = actions_.size();
        add(title, symbol, verb, argument);
        if (actions_.size() > before)
            actions_.back().destructive = true;
    }

    std::vector<RowAction> take() { return std::move(actions_); }

private:
    std::vector<RowAction> actions_;
};

void addFileActions(Menu& menu, const std::string& path, const RowMenuSources& sources) {
    const auto& verbs = sources.verbs;
    if (sources.app)
        menu.add("Open", "arrow.up.forward.app", verbs.launchApp, *sources.app);
    else
        menu.add("Open", "arrow.up.forward.app", verbs.openPath, path);
    menu.add("Open with …", "", verbs.openPathWith, path);
    menu.add("Reveal in Finder", "folder", verbs.revealPath, path);
    if (sources.folder)
        menu.add("Open in Terminal", "terminal", verbs.openTerminal, *sources.folder);
    menu.add("Copy path", "doc.on.doc", verbs.copyText, path);
    menu.addDestructive("Move to Trash", "trash", verbs.trashPath, path);
}

} // namespace

std::vector<RowAction> rowActions(const ResultRow& row, const RowMenuSources& sources) {
    Menu menu;
    menu.add(sources.isFavorite ? "Remove from Favorites" : "Add to Favorites",
             sources.isFavorite ? "star.slash" : "star",
             sources.toggleFavorite);
    const auto path = row.url ? Urls::filePath(*row.url) : std::nullopt;
    if (path && (row.kind == RowKind::file || row.kind == RowKind::app))
        addFileActions(menu, *path, sources);
    if (sources.app && sources.appRuns)
        menu.add("Quit " + row.title, "xmark.circle", sources.verbs.quitApp, *sources.app);
    if (sources.app)
        menu.add("Hide from results", "eye.slash", sources.hideApp);
    if (sources.showTwins)
        menu.add("Show all named “" + row.title + "”", "list.bullet", sources.showTwins);
    if (sources.isUserCommand && row.id.starts_with(commandRowPrefix))
        menu.add("Edit commands.json", "pencil", sources.verbs.editCommands);
    auto actions = menu.take();
    std::ranges::copy(sources.ofItsFamily, std::back_inserter(actions));
    return actions;
}

std::vector<RowAction> panelActions(const RowVerbs& verbs, std::string_view productName) {
    Menu menu;
    const std::string name(productName);
    menu.add("Settings", "gearshape", verbs.openSettings);
    menu.add("Health", "stethoscope", verbs.openHealth);
    menu.add("Quit " + name, "power", verbs.quitProgram);
    menu.add("Check for a newer " + name, "arrow.down.circle", verbs.checkForUpdate);
    return menu.take();
}

} // namespace tessarine
