#pragma once

#include "launcherapp/platform/Subscription.h"
#include "launcherapp/query/RowFamilies.h"
#include "launcherapp/query/rows/FileRows.h"
#include "launcherapp/shell/CommandWiring.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class AnswerService;
class AppCatalog;
class AppLauncher;
class CalcStore;
class Diagnostics;
class DictionarySource;
class FileIndex;
class FileOpener;
class FolderListings;
class RecentApps;
class SearchModel;
class UsageStore;

/// Connects the search model to the services: which of them gives it which rows, and which does
/// what a row asks for. Main thread only; what it refers to outlives it.
class RowWiring {
public:
    struct Services {
        SearchModel& model;
        AppCatalog& catalog;
        AppLauncher& launcher;
        FileOpener& opener;
        FileIndex& index;
        FolderListings& listings;
        UsageStore& usage;
        DictionarySource& dictionary;
        Diagnostics& diagnostics;
    };

    /// What a row asks the program itself to do.
    struct Verbs {
        std::function<void(const std::string& text)> copyText; ///< empty without a clipboard
        std::function<std::string()> copyObstacle;             ///< as `RowVerbs` has it
        std::function<void()> openSettings;
        std::function<void()> quitProgram;
    };

    /// Connects all services but those that `add` takes, which are made later. `home` is shown as
    /// "~" in paths.
    RowWiring(Services services, Verbs verbs, std::string home);
    RowWiring(const RowWiring&) = delete;
    RowWiring& operator=(const RowWiring&) = delete;

    void add(RecentApps& recent);
    void add(AnswerService& answers, CalcStore& calculations);
    void add(CommandWiring::Services commands);

private:
    void wireVerbs(Verbs verbs);
    void hideBeforeVerbs();
    void wireFiles();
    void openUrl(const std::string& url);
    void openDictionary(const std::string& word);
    Rows browse(const std::string& folder, std::string_view query);
    FileRowSources fileRowSources() const;

    Services services_;
    std::string home_;
    std::string browsed_; ///< the folder whose entries were last shown
    Subscription browsing_;
    std::optional<CommandWiring> commands_;
};

} // namespace tessarine
