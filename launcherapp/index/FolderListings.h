#pragma once

#include "launcherapp/platform/DirectoryReader.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace tessarine {

class MainQueue;
class WorkQueues;

/// What the folders hold that somebody browses, beyond what the index knows of them. Read in the
/// background when first asked for, and anew each time the browsing begins again. Main thread only.
class FolderListings {
public:
    FolderListings(MainQueue& queue,
                   WorkQueues& work,
                   std::shared_ptr<const DirectoryReader> reader);

    /// What the folder holds as far as it was read; null while that is under way, and for a folder
    /// that can't be read. The first question starts reading, and `arrived` is called when it ends.
    std::shared_ptr<const DirectoryListing> listing(const std::string& folder);

    /// Whether the folder was read and gave nothing.
    bool isUnreadable(const std::string& folder) const { return unreadable_.contains(folder); }

    /// Forgets all listings: the next question reads again.
    void forget();

    std::function<void()> arrived;

private:
    MainQueue& queue_;
    WorkQueues& work_;
    const std::shared_ptr<const DirectoryReader> reader_;
    std::map<std::string, std::shared_ptr<const DirectoryListing>> listings_;
    std::set<std::string> reading_;
    std::set<std::string> unreadable_;
    std::shared_ptr<int> generation_ = std::make_shared<int>(); ///< of what is still wanted
};

} // namespace tessarine
