#pragma once

#include "LauncherCore/clipboard/ClipGroups.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class ClipGroupsRuntime;
class Diagnostics;
class DirectoryWatcher;
class FileStore;
class MainQueue;
class Prefs;

/// The file of the taught groups, and what of it is in force. Main thread only.
class ClipGroupStore {
public:
    struct Services {
        MainQueue& queue;
        FileStore& files;
        Prefs& prefs;
        Diagnostics& diagnostics;
        ClipGroupsRuntime& runtime;
    };

    /// `path` is of "clip-groups.json".
    ClipGroupStore(Services services, std::string path);
    ClipGroupStore(const ClipGroupStore&) = delete;
    ClipGroupStore& operator=(const ClipGroupStore&) = delete;

    /// Reads the file, which is small, at once, and takes what it says; without one an empty one is
    /// written.
    void load();

    /// From now on an edit of the file by anybody is in force at once.
    void follow(DirectoryWatcher& directories);

    const std::string& path() const { return path_; }

    /// Why the file could not be read; nothing when it could.
    const std::optional<std::string>& loadError() const { return loadError_; }

    /// False when the file could not be written, and then nothing has changed.
    bool write(const ClipGroups& groups);

    /// Whether there was one of this name, whatever its case, and it is gone from the file too.
    bool remove(std::string_view name);

    /// Calls `changed` after other groups are in force.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    Services services_;
    std::string path_;
    std::optional<std::string> loadError_;
    Subscription watch_;
    Observers<> changes_;
};

} // namespace tessarine
