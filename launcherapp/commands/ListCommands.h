#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/commands/ListRows.h"
#include "launcherapp/platform/ProgramReader.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

class CommandRuntime;
class Diagnostics;
class WorkQueues;

/// Commands whose rows a script prints. What it printed for a query is kept until `forget`.
/// Main thread only.
class ListCommands {
public:
    struct Services {
        CommandRuntime& runtime;
        ProgramReader& programs;
        WorkQueues& work;
        Diagnostics& diagnostics;
    };

    explicit ListCommands(Services services);
    ~ListCommands();
    ListCommands(const ListCommands&) = delete;
    ListCommands& operator=(const ListCommands&) = delete;

    /// What is kept for the query; null when nothing is yet. Cheap.
    const std::vector<ListRow>* rows(const CommandSpec& command, std::string_view query) const;

    /// Runs the script for the query unless its rows are kept or on their way; `then` is called
    /// once they are kept. A script that still runs for another query of the command is ended.
    void request(const CommandSpec& command, const std::string& query, std::function<void()> then);

    /// Return on a row: runs the command's `onSelect` with it, or opens what it stands for.
    void choose(const CommandSpec& command, const ListRow& row);

    /// Keeps nothing: the commands are others now.
    void forget();

private:
    using Key = std::pair<std::string, std::string>; ///< command id, query

    Services services_;
    std::map<Key, std::vector<ListRow>, std::less<>> cache_;
    std::map<std::string, std::shared_ptr<RunningProcess>> running_; ///< by command id
    std::set<Key> inFlight_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
