#pragma once

#include "LauncherCore/query/UsageLog.h"
#include "launcherapp/operations/StateFile.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class Diagnostics;
class MainQueue;

/// The live usage log of this computer, with the copies of the others that settings sync brought,
/// and the one combined log that ranking reads. Main thread only; saves run in the background.
class UsageStore {
public:
    struct Files {
        StateFile own;    ///< "usage.json"
        StateFile synced; ///< "synced-usage.json"
    };

    /// Loads both documents; one that is absent or no whole document counts as empty. History of
    /// retired ids is carried over, unless a command of the user still has the id, as
    /// `commandExists` tells by the command's own id. `learns` is the preference `learnFromUse`.
    UsageStore(MainQueue& queue,
               Diagnostics& diagnostics,
               Files files,
               std::function<bool()> learns,
               const std::function<bool(std::string_view commandID)>& commandExists);

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
    void changed();

    MainQueue& queue_;
    Files files_;
    std::function<bool()> learns_;
    UsageLog log_;
    std::map<std::string, UsageLog> otherDevices_;
    std::optional<UsageLog> combinedCache_;
    const UsageLog none_;
};

} // namespace tessarine
