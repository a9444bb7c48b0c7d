#pragma once

#include "LauncherCore/clipboard/ClipboardHistory.h"
#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class ClipGroupsRuntime;
class Diagnostics;
class Prefs;
class WorkQueues;

/// A deletion that other devices are to hear of.
struct ClipTombstone {
    std::string id;
    std::string origin; ///< the deleting device
    std::int64_t lamport = 0;
    double at = 0; ///< seconds since 1970, UTC

    bool operator==(const ClipTombstone&) const = default;
};

/// The clipboard history of the running program with its pictures, kept on disk: every change is
/// saved a second later in the background, so that a burst of changes costs one write. Main thread
/// only.
class ClipboardStore {
public:
    static constexpr Seconds savePause{1};
    static constexpr double tombstoneWindow = 2592000; ///< seconds

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        Prefs& prefs;
        Diagnostics& diagnostics;
        ClipGroupsRuntime& groups;
        std::shared_ptr<const ClipPictures> pictures;
    };

    /// `file` is "clipboard.json".
    ClipboardStore(Services services, StateFile file);
    ~ClipboardStore();
    ClipboardStore(const ClipboardStore&) = delete;
    ClipboardStore& operator=(const ClipboardStore&) = delete;

    /// Reads the document off the main thread; `loaded` runs once it is there. Without one, or with
    /// one that can't be read, the history is empty, and a copy of what couldn't be read is kept.
    void load(std::function<void()> loaded);

    bool isLoaded() const { return isLoaded_; }

    /// Empty until it is loaded.
    const ClipboardHistory& history() const { return history_; }

    const std::vector<ClipTombstone>& tombstones() const { return tombstones_; }

    void record(ClipboardEntry entry);
    void bump(std::string_view id);  ///< copied again, now
    void touch(std::string_view id); ///< used now
    void togglePin(std::string_view id);
    void remove(std::string_view id); ///< with its pictures, unless another clipping has them too
    void notePaste(std::string_view id, std::string_view into);

    /// Drops all that isn't pinned; with an age, only what was copied or used since then.
    void clear(std::optional<Seconds> newerThan);

    /// Drops what the user's retention no longer keeps.
    void pruneNow();

    /// Deletes the picture files that no clipping names. In the background.
    void sweepPictures();

    /// Saves at once what is still to be saved; for the end of the program.
    void flush();

    /// Calls `changed` after each change of the history, its loading among them.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    void changed();
    void scheduleSave();
    std::size_t dropPictures(const std::vector<ClipboardEntry>& dropped);
    void stampLocal(std::string_view id);
    void noteDeletion(std::string_view id);
    void trimTombstones();

    Services services_;
    StateFile file_;
    ClipboardHistory history_;
    std::vector<ClipTombstone> tombstones_;
    bool isLoaded_ = false;
    bool saveScheduled_ = false;
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
