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

    enum class Upkeep {
        all,
        none, ///< for a run that ends by itself: what such runs say may leave nothing behind
    };

    /// Reads the file, which is small, at once, and takes what it says. With `Upkeep::all` an empty
    /// one is written where there is none, retired rules are upgraded in it, and the time is noted
    /// since when pastes are marked.
    void load(Upkeep upkeep);

    /// Takes what the file says now, if that is new; without a file what is in force stays, and
    /// the answer is false. Before a change is made that rests on it:
    /// between this and `write` nothing keeps another program from writing too, and the later one
    /// of two that write within that moment wins.
    bool readAgain();

    /// From now on an edit of the file by anybody is in force at once.
    void follow(DirectoryWatcher& directories);

    const std::string& path() const { return path_; }

    /// Why the file could not be read or doesn't parse, in words; nothing when it is in force.
    const std::optional<std::string>& loadError() const { return loadError_; }

    /// False when the file could not be written, or what lies there can't be read or doesn't parse:
    /// then nothing has changed, in the file or in force, and the log has the reason. A copy is
    /// kept of a file that holds what this would lose. Waits for the disk, as the file is small.
    bool write(const ClipGroups& groups);

    enum class Removal {
        done,
        absent,     ///< there is none of this name, whatever its case
        notWritten, ///< nothing has changed
    };

    /// Takes the group of this name, whatever its case, out of the file and out of force. Waits for
    /// the disk as `write` does.
    Removal remove(std::string_view name);

    /// Calls `changed` after other groups are in force.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    void take(const std::string& text);
    void refuse(std::string_view problem);
    bool save(const ClipGroups& groups);
    void lookSoon();
    void look();

    Services services_;
    std::string path_;
    Upkeep upkeep_ = Upkeep::all;
    std::optional<std::string> loadError_;
    std::optional<std::string> lastText_; ///< as last read or written; nothing: neither yet
    bool isLookDue_ = false;
    Subscription watch_;
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
