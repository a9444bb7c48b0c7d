#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/commands/ListRows.h"
#include "launcherapp/platform/ProgramReader.h"

#include <cstddef>
#include <deque>
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

/// Commands whose rows a script prints. What it printed for a query is kept until `forget`, or
/// until much has been printed since. Main thread only.
class ListCommands {
public:
    /// More output than this is no list.
    static constexpr std::size_t mostOutput = std::size_t{2} << 20;
    /// Beyond either, the rows kept longest go: somebody types many queries in a day. The output
    /// stands for what its rows take. The newest rows stay whatever they take.
    static constexpr std::size_t mostQueries = 500;
    static constexpr std::size_t mostKeptOutput = std::size_t{8} << 20;

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

    /// What is kept for the query; null when nothing is yet. Cheap. Valid until the main thread's
    /// next turn.
    const std::vector<ListRow>* rows(const CommandSpec& command, std::string_view query) const;

    /// Runs the script for the query unless its rows are kept or on their way; `then` is called
    /// once they are kept. A script that still runs for another query of the command is ended.
    void request(const CommandSpec& command, const std::string& query, std::function<void()> then);

    /// Return on a row: runs the command's `onSelect` with it, or opens what it stands for.
    void choose(const CommandSpec& command, const ListRow& row);

    /// Keeps nothing, and ends what runs: the commands are others now.
    void forget();

private:
    using Key = std::pair<std::string, std::string>; ///< command id, query

    /// What was printed for a query.
    struct Kept {
        std::vector<ListRow> rows;
        std::size_t outputBytes = 0;
    };

    struct Run;

    void supersede(const std::string& id);
    void parse(const std::shared_ptr<Run>& run, ProcessEnd end);
    void keep(const Run& run, Kept kept);

    Services services_;
    std::map<Key, Kept> cache_;
    std::deque<Key> oldestFirst_;                         ///< of the cache
    std::size_t keptOutput_ = 0;                          ///< bytes, of the cache
    std::map<std::string, std::shared_ptr<Run>> running_; ///< the last by command id
    std::set<Key> inFlight_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
