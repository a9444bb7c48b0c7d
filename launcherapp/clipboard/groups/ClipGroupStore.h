#pragma once

#include "LauncherCore/clipboard/ClipGroups.h"
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
class WorkQueues;

/// The file of the taught groups, and what of it is in force. Main thread only.
class ClipGroupStore {
public:
    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        FileStore& files;
        Prefs& prefs;
        Diagnostics& diagnostics;
        ClipGroupsRuntime& runtime;
    };

    /// `path` is of "clip-groups.json".
    ClipGroupStore(Services services, std::string path);
    ~ClipGroupStore();
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

    /// False when the file could not be written, and then nothing has changed. A copy is kept of a
    /// file that doesn't parse, or holds what this would lose.
    bool write(const ClipGroups& groups);

    /// Whether there was one of this name, whatever its case, and it is gone from the file too.
    bool remove(std::string_view name);

    /// Calls `changed` after other groups are in force.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    void take(const std::string& text);
    void refuse();
    bool save(const ClipGroups& groups);
    void lookSoon();
    void look();

    Services services_;
    std::string path_;
    std::optional<std::string> loadError_;
    std::optional<std::string> lastText_; ///< as last read or written; nothing: neither yet
    bool isLookDue_ = false;
    Subscription watch_;
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
