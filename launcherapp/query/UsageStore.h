#pragma once

#include "LauncherCore/query/UsageLog.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class Diagnostics;
class MainQueue;

/// The live usage log of this computer, with the copies of the others that settings sync brought,
/// and the one combined log that ranking reads. Empty until it is loaded, but for what is recorded
/// meanwhile. Main thread only; saves run in the background.
class UsageStore {
public:
    struct Files {
        StateFile own;    ///< "usage.json"
        StateFile synced; ///< "synced-usage.json"
    };

    /// `learns` is the preference `learnFromUse`; `commandExists` tells by a command's own id
    /// whether the user has such a command.
    UsageStore(MainQueue& queue,
               Diagnostics& diagnostics,
               Files files,
               std::function<bool()> learns,
               std::function<bool(std::string_view commandID)> commandExists);
    UsageStore(const UsageStore&) = delete;
    UsageStore& operator=(const UsageStore&) = delete;

    /// Loads both documents; one that is absent or no whole document counts as empty. History of
    /// retired ids is carried over, unless a command of the user still has the id. At once, for a
    /// run that answers and ends. Nothing is saved before one of the two was called.
    void load();

    /// The same without waiting for the disk. What was recorded by then is added to what is found.
    void loadLater();

    /// Calls `loaded` when a document has come that was waited for.
    Subscription onLoaded(std::function<void()> loaded);

    const UsageLog& log() const { return log_; }

    /// Counts a launch of the row now. Nothing while learning is off.
    void record(std::string_view id);

    /// Counts a pick of the row for the query. Nothing while learning is off.
    void recordChoice(std::string_view query, std::string_view id);

    /// What ranking must read; empty while learning is off. Valid until the next change.
    const UsageLog& ranking();

    /// Takes the log that settings sync restored.
    void restoreLocal(UsageLog log);

    /// Takes the other computers' logs, by device id.
    void setOtherDevices(std::map<std::string, UsageLog> devices);

    const std::map<std::string, UsageLog>& otherDevices() const { return otherDevices_; }

    /// Forgets what this computer learned. What others learned stays.
    void reset();

private:
    using Edit = std::function<void(UsageLog&)>;

    void change(Edit edit);
    void carryOver();
    void takeOwn(UsageLog log);
    void takeSynced(std::map<std::string, UsageLog> devices);
    void changed();

    MainQueue& queue_;
    Diagnostics& diagnostics_;
    Files files_;
    std::function<bool()> learns_;
    std::function<bool(std::string_view)> commandExists_;
    UsageLog log_;
    std::map<std::string, UsageLog> otherDevices_;
    std::optional<UsageLog> combinedCache_;
    const UsageLog none_;
    bool isLoaded_ = false;
    bool knowsDevices_ = false;   ///< loaded, or set since
    std::vector<Edit> meanwhile_; ///< made before the own document was there
    Observers<> loaded_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(); ///< for what comes back later
};

} // namespace tessarine
