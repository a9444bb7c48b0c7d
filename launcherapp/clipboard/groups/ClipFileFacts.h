#pragma once

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace tessarine {

class FileStore;
class WorkQueues;

/// The beginnings of the files that copied texts name, for the rules of taught groups. Nobody waits
/// for a file: what is asked for is answered from what was read last, and read in the background.
/// Main thread only.
class ClipFileFacts {
public:
    static constexpr std::size_t mostAtOnce = 4; ///< looks that are expected to end
    /// A look that takes longer hangs with its drive, and makes room for another.
    static constexpr Seconds patience{5};
    /// Each hanging look holds a thread.
    static constexpr std::size_t mostHanging = 32;
    static constexpr std::size_t mostKept = 1000; ///< 4 MB of beginnings at most

    /// `files` is read on other threads, by looks that may outlive this object.
    ClipFileFacts(MainQueue& queue, WorkQueues& work, std::shared_ptr<const FileStore> files);
    ClipFileFacts(const ClipFileFacts&) = delete;
    ClipFileFacts& operator=(const ClipFileFacts&) = delete;

    /// What was read last; nothing before the first look has ended. What is older than
    /// `ClipGroupsRuntime::fileFactTTL` is read anew, and given as old meanwhile.
    std::optional<ClipFileBeginning> beginning(const std::string& path);

    /// Calls `arrived` after a look has ended that found another beginning than the last one.
    Subscription onArrival(std::function<void()> arrived) {
        return arrivals_.add(std::move(arrived));
    }

    /// Looks at the file and waits for it: for a run that answers and ends. Any thread. Links are
    /// followed; a pipe, a device and a folder have no text, and are not opened.
    static ClipFileBeginning read(const FileStore& files, const std::string& path);

private:
    struct Known {
        std::optional<std::string> bytes; ///< as in ClipFileBeginning
        double at = 0;                    ///< seconds since 1970
    };

    void startWaiting();
    void start(const std::string& path);
    void take(const std::string& path, ClipFileBeginning found);
    bool mayStart() const;

    MainQueue& queue_;
    WorkQueues& work_;
    std::shared_ptr<const FileStore> files_;
    std::map<std::string, Known> known_;     ///< by path
    std::map<std::string, Seconds> looking_; ///< paths being looked at, since that uptime
    std::set<std::string> waiting_;          ///< to be looked at when there is room
    Observers<> arrivals_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
