#include "launcherapp/query/FavoriteNames.h"

#include "launcherapp/platform/WorkQueues.h"

#include <string_view>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view personPrefix = "person:";

} // namespace

FavoriteNames::FavoriteNames(WorkQueues& work, Lookup lookup, std::function<void()> changed)
    : work_(work), lookup_(std::move(lookup)), changed_(std::move(changed)) {}

void FavoriteNames::warm(const std::vector<std::string>& rowIDs) {
    for (const auto& id : rowIDs) {
        if (id.starts_with(personPrefix))
            name(id.substr(personPrefix.size()));
    }
}

std::optional<std::string> FavoriteNames::name(const std::string& identifier) {
    if (const auto known = names_.find(identifier); known != names_.end())
        return known->second;
    if (!inFlight_.insert(identifier).second)
        return std::nullopt;
    work_.run(
        WorkPriority::userInitiated,
        [lookup = lookup_, identifier] { return lookup(identifier); },
        [this, identifier](std::optional<std::string> found) {
            inFlight_.erase(identifier);
            if (!found)
                return; // a later question may try again
            names_[identifier] = *std::move(found);
            changed_();
        });
    return std::nullopt;
}

} // namespace tessarine
