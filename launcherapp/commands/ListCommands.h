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
class MainQueue;
class WorkQueues;

/// Commands whose rows a script prints. What it printed for a query is kept until `forget`, or
/// until much has been printed since. Main thread only.
class ListCommands {
public:
    /// More output than this is no list.
    static constexpr std::size_t mostOutput = std::size_t{2} << 20;
    /// As many as a list of the panel has. Of more the first are kept.
    static constexpr std::size_t mostRows = 60;
    /// Beyond either, what was kept longest goes: somebody types many queries in a day.
    static constexpr std::size_t mostQueries = 500;
    static constexpr std::size_t mostKeptBytes = std::size_t{8} << 20;

    struct Services {
        MainQueue& queue;
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
    const ListResult* rows(const CommandSpec& command, std::string_view query) const;

    /// Runs the script for the query unless its rows are kept or on their way; `then` is called
    /// once they are kept. A script that still runs for another query of the command is ended. One
    /// that can't be started is not tried again until `forget`: its problem is there at once, for
    /// every query, and `then` is not called.
    void request(const CommandSpec& command, const std::string& query, std::function<void()> then);

    /// Whether any rows are on their way.
    bool isWaiting() const { return !inFlight_.empty(); }

    /// Return on a row: runs the command's `onSelect` with it, or opens what it stands for.
    void choose(const CommandSpec& command, const ListRow& row);

    /// Keeps nothing, and ends what runs: the commands are others now.
    void forget();

private:
    using Key = std::pair<std::string, std::string>; ///< command id, query

    struct Run;

    void supersede(const std::string& id);
    void parse(const std::shared_ptr<Run>& run, ProcessEnd end);
    void keep(const Run& run, ListResult result);
    void log(std::string_view id, std::string_view what) const;

    Services services_;
    std::map<Key, ListResult> cache_;
    std::map<std::string, ListResult> failed_;            ///< not started at all, by command id
    std::deque<Key> oldestFirst_;                         ///< of the cache
    std::size_t keptBytes_ = 0;                           ///< of the cache
    std::map<std::string, std::shared_ptr<Run>> running_; ///< the last by command id
    std::set<Key> inFlight_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
