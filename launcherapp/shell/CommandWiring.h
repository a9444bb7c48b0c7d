#pragma once

#include "LauncherCore/commands/WindowVerb.h"
#include "launcherapp/commands/WindowManager.h"
#include "launcherapp/query/RowFamilies.h"
#include "launcherapp/query/rows/FileRows.h"
#include "launcherapp/query/rows/WindowRows.h"

#include <functional>
#include <string_view>

namespace tessarine {

class CommandCatalog;
class CommandRuntime;
class CommandStore;
class FileIndex;
class FileOpener;
class ListCommands;
class Prefs;
class SearchModel;
class UsageStore;
class WindowList;

/// Connects the search model to the services of the commands: which rows they give, and what a row
/// of theirs does. Main thread only; what it refers to outlives it.
class CommandWiring {
public:
    struct Services {
        SearchModel& model;
        Prefs& prefs;
        UsageStore& usage;
        FileIndex& index;
        FileOpener& opener;
        WindowList& list;
        WindowManager& windows;
        CommandRuntime& runtime;
        ListCommands& lists;
        CommandStore& store;
        CommandCatalog& catalog;
    };

    /// `fileRows` tells what rows of files are made of.
    CommandWiring(Services services, std::function<FileRowSources()> fileRows);
    CommandWiring(const CommandWiring&) = delete;
    CommandWiring& operator=(const CommandWiring&) = delete;

private:
    void wireVerbs();
    void wireFamilies();
    Rows engaged(const CommandSpec& command, std::string_view argument);
    Rows listRows(const CommandSpec& command, std::string_view argument);
    Rows foundFiles(const CommandSpec& command, std::string_view argument) const;
    WindowRowSources windowSources();
    void quit(const QuittableApp& app, WindowManager::Force force);
    void hidePanel();

    Services services_;
    std::function<FileRowSources()> fileRows_;
};

} // namespace tessarine
