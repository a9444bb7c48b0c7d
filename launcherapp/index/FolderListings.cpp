#include "launcherapp/index/FolderListings.h"

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/WorkQueues.h"

#include <optional>
#include <utility>

namespace tessarine {

FolderListings::FolderListings(MainQueue& queue,
                               WorkQueues& work,
                               std::shared_ptr<const DirectoryReader> reader)
    : queue_(queue), work_(work), reader_(std::move(reader)) {}

std::shared_ptr<const DirectoryListing> FolderListings::listing(const std::string& folder) {
    requireMainThread(queue_);
    const auto known = listings_.find(folder);
    if (known != listings_.end())
        return known->second;
    if (unreadable_.contains(folder) || !reading_.insert(folder).second)
        return nullptr;
    work_.runApart([reader = reader_, folder] { return reader->list(folder); },
                   [this, folder, wanted = std::weak_ptr(generation_)](
                       std::optional<DirectoryListing> listing) {
                       if (wanted.expired())
                           return;
                       reading_.erase(folder);
                       if (listing)
                           listings_[folder] =
                               std::make_shared<const DirectoryListing>(*std::move(listing));
                       else
                           unreadable_.insert(folder);
                       if (arrived)
                           arrived();
                   });
    return nullptr;
}

void FolderListings::forget() {
    requireMainThread(queue_);
    listings_.clear();
    reading_.clear();
    unreadable_.clear();
    generation_ = std::make_shared<int>();
}

} // namespace tessarine
