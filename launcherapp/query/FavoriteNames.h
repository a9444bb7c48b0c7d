#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tessarine {

class WorkQueues;

/// Display names of contacts that stand among the favourites, looked up off the main thread and
/// kept for the whole run. Main thread only.
class FavoriteNames {
public:
    /// Gives a contact's name by its identifier, on any thread; nothing when there is none.
    using Lookup = std::function<std::optional<std::string>(const std::string& identifier)>;

    /// `changed` is called after each name that came in.
    FavoriteNames(WorkQueues& work, Lookup lookup, std::function<void()> changed);

    /// Starts looking up every favourite that is a person, by its row id.
    void warm(const std::vector<std::string>& rowIDs);

    /// The name, if it is known already; else starts a look-up, unless one is under way.
    std::optional<std::string> name(const std::string& identifier);

private:
    WorkQueues& work_;
    Lookup lookup_;
    std::function<void()> changed_;
    std::map<std::string, std::string> names_; ///< by contact identifier
    std::set<std::string> inFlight_;
};

} // namespace tessarine
