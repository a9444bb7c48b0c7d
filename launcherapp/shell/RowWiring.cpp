#include "launcherapp/shell/RowWiring.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/catalog/AppLauncher.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/catalog/RecentApps.h"
#include "launcherapp/catalog/StandInApps.h"
#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/FolderListings.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/DictionarySource.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/EmojiRows.h"
#include "launcherapp/sources/AnswerService.h"
#include "launcherapp/sources/CalcStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace tessarine {

RowWiring::RowWiring(Services services, Verbs verbs, std::string home)
    : services_(services), home_(std::move(home)) {
    wireVerbs(std::move(verbs));
    hideBeforeVerbs();
    wireFiles();
    services_.model.families.emoji = [&model = services_.model](std::string_view query) {
        return emojiRows(query, model.verbs);
    };
    services_.model.families.lookUp =
        [&dictionary = services_.dictionary](const std::string& word,
                                             const std::function<void(std::string)>& found) {
            dictionary.define(word, [found](std::optional<std::string> text) {
                if (text)
                    found(*std::move(text));
            });
        };
}

void RowWiring::wireVerbs(Verbs verbs) {
    auto& model = services_.model.verbs;
    auto& opener = services_.opener;
    model.launchApp = [&catalog = services_.catalog](const CatalogApp& app) {
        catalog.launch(app);
    };
    model.openUrl = [this](const std::string& url) { openUrl(url); };
    model.quitProgram = std::move(verbs.quitProgram);
    model.openSettings = std::move(verbs.openSettings);
    model.copyText = std::move(verbs.copyText);
    model.copyObstacle = std::move(verbs.copyObstacle);
    model.lookUpWord = [this](const std::string& word) { openDictionary(word); };
    model.openPath = [&opener](const std::string& path) { opener.open(path); };
    model.revealPath = [&opener](const std::string& path) { opener.reveal(path); };
    model.trashPath = [&opener](const std::string& path) { opener.trash(path); };
}

/// What leaves the panel takes it away first, so that what comes up has the screen and the keys.
void RowWiring::hideBeforeVerbs() {
    auto& model = services_.model;
    const auto hiding = [&model]<typename... Arguments>(std::function<void(Arguments...)>& verb) {
        if (verb)
            verb = [&model, inner = std::move(verb)](Arguments... arguments) {
                if (model.dismiss)
                    model.dismiss();
                inner(arguments...);
            };
    };
    auto& verbs = model.verbs;
    hiding(verbs.launchApp);
    hiding(verbs.openUrl);
    hiding(verbs.openPath);
    hiding(verbs.revealPath);
    hiding(verbs.lookUpWord);
    hiding(verbs.openSettings);
    hiding(verbs.copyText);
}

void RowWiring::wireFiles() {
    auto& model = services_.model;
    model.families.files = [this](std::string_view query) {
        constexpr std::size_t limit = 6;
        const auto found =
            services_.index.search({.query = query, .limit = limit}, services_.usage.ranking());
        return collapseSameName(found, limit, fileRowSources());
    };
    model.families.browse = [this](const std::string& folder, std::string_view query) {
        return browse(folder, query);
    };
    model.families.folderPath = folderOf;
    model.families.isBrowseRoot = [&index = services_.index](const std::string& folder) {
        const auto roots = index.roots();
        return std::ranges::count(roots, folder) > 0;
    };
    browsing_ = model.onChange([this] {
        if (!services_.model.browsePath())
            browsed_.clear(); // the next time into the same folder reads it anew
    });
    services_.listings.arrived = [&model] {
        if (model.browsePath())
            model.recompute();
    };
}

void RowWiring::add(RecentApps& recent) {
    services_.model.families.recentApps = [&recent, &catalog = services_.catalog] {
        return recent.recent(catalog.apps());
    };
}

void RowWiring::add(AnswerService& answers, CalcStore& calculations) {
    auto& model = services_.model;
    const CalcHistoryVerbs history{
        .typeText = [&model](const std::string& text) { model.setQuery(text); },
        .pin = [&calculations](const std::string& id) { calculations.pin(id); },
        .unpin = [&calculations](const std::string& id) { calculations.unpin(id); },
        .remove = [&calculations](const std::string& id) { calculations.remove(id); }};
    model.families.answers = [&model, &answers, history](std::string_view query) {
        return answers.rows(query, model.verbs, history);
    };
    model.families.calcHistory = [&model, &answers, history](std::string_view argument,
                                                             ListMode mode) {
        return mode == ListMode::keyword ? answers.historyRows(argument, model.verbs, history)
                                         : Rows{};
    };
    model.families.menuActions =
        [&model, &answers, history, others = std::move(model.families.menuActions)](
            const ResultRow& row) {
            auto actions = answers.historyActions(row, model.verbs, history);
            std::ranges::move(rowsOf(others, row), std::back_inserter(actions));
            return actions;
        };
    model.families.copyText = [&answers](const ResultRow& row) {
        return row.id.starts_with(emojiRowPrefix) ? row.glyph : answers.historyCopyText(row);
    };
}

void RowWiring::add(CommandWiring::Services commands) {
    commands_.emplace(commands, [this] { return fileRowSources(); });
}

/// What a folder holds, read anew each time it is gone into.
Rows RowWiring::browse(const std::string& folder, std::string_view query) {
    auto& listings = services_.listings;
    if (folder != browsed_)
        listings.forget();
    browsed_ = folder;
    if (const auto listing = listings.listing(folder))
        return browseRows(folder, *listing, query, fileRowSources());
    return listings.isUnreadable(folder) ? Rows{unreadableFolderRow(folder)} : Rows{};
}

FileRowSources RowWiring::fileRowSources() const {
    const auto& model = services_.model;
    return {.verbs = model.verbs, .home = home_, .expanded = model.expandedGroups()};
}

void RowWiring::openUrl(const std::string& url) {
    services_.opener.openUrl(
        url,
        [&diagnostics = services_.diagnostics, url](const std::optional<std::string>& problem) {
            if (problem)
                diagnostics.log(fmt::format("open: {} could not be opened: {}", url, *problem));
        });
}

/// Dictionary programs take the word as a "dict" address or not at all: then they open without it.
void RowWiring::openDictionary(const std::string& word) {
    auto& diagnostics = services_.diagnostics;
    const auto& registry = *services_.catalog.registry();
    if (registry.handlerForScheme("dict")) {
        openUrl("dict:///d:" + Urls::queryValue(word));
        return;
    }
    const auto* program = StandInApps::application(registry, "com.apple.Dictionary");
    if (!program) {
        diagnostics.log("dictionary: no dictionary application is installed");
        return;
    }
    services_.launcher.launch(*program, {}, [&diagnostics](std::optional<std::string> problem) {
        if (problem)
            diagnostics.log(fmt::format("dictionary: {}", *problem));
    });
}

} // namespace tessarine
