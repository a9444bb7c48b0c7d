#pragma once

#include "LauncherCore/clipboard/ClipboardHistory.h"
#include "launcherapp/clipboard/ClipPictureKeeper.h"
#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/clipboard/ClipStamps.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <atomic>
#include <cstddef>
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

/// The clipboard history of the running program with its pictures, kept on disk: every change is
/// saved a second later in the background, so that a burst of changes costs one write; while a save
/// is under way the newest state alone waits. Until it is loaded an id means nothing; an id that
/// isn't there changes nothing. Main thread only.
class ClipboardStore {
public:
    static constexpr Seconds savePause{1};
    /// Of the document that is read at start: far above what `mostTextBytes` makes of it, as one of
    /// an other program's may escape each byte and pinned clippings have no bound.
    static constexpr std::size_t largestDocument = std::size_t{4} << 30;
    /// Of all texts together. Each is held again as searched, and once more while it is saved.
    static constexpr std::size_t mostTextBytes = std::size_t{256} << 20;

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

    const std::vector<ClipTombstone>& tombstones() const { return stamps_.tombstones(); }

    /// Files a copy that was kept; what it drops loses its pictures. Requires that it is loaded.
    void record(ClipboardEntry entry);

    /// Reads a copied picture and writes its files, off the main thread; `done` gets nothing for
    /// what is no picture, and records it or lets it go. No file that it names is deleted before.
    void keepPicture(std::string bytes,
                     std::function<void(std::optional<ClipPictures::Kept> kept)> done);

    /// Deletes the files of a picture that was kept and is not recorded after all.
    void discard(const ClipPictures::Kept& kept);

    /// How often the history was cleared: what was copied before does not come back.
    std::uint64_t clearings() const { return clearings_; }

    void bump(std::string_view id);  ///< copied again, now
    void touch(std::string_view id); ///< used now
    void togglePin(std::string_view id);
    void remove(std::string_view id); ///< with its pictures, unless another clipping has them too
    void notePaste(std::string_view id, std::string_view into);

    /// Drops all that isn't pinned; with an age, only what was copied or used since then. Before it
    /// is loaded that is kept in mind.
    void clear(std::optional<Seconds> newerThan);

    /// Drops what the user's retention no longer keeps, and tries a save again that failed.
    void pruneNow();

    /// Deletes what killed saves left, and the picture files that no clipping names; those stay
    /// when the history on disk was not there or not understood whole. In the background.
    void sweepPictures();

    /// Saves at once what is not on disk yet.
    void flush();

    /// The program ends: saves as `flush` does, and lets go of pictures that wait to be kept.
    void end();

    /// Calls `changed` after each change of the history, its loading among them.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    bool has(std::string_view id) const { return history_.entry(id) != nullptr; }

    void changed();
    void takeLoaded(ClipboardHistory history);
    void keepWithinBounds();
    std::size_t letGo(std::vector<ClipboardEntry> dropped);
    void save();
    void saved(std::uint64_t revision, StateFile::Saved outcome);

    Services services_;
    StateFile file_;
    ClipboardHistory history_;
    ClipPictureKeeper pictures_;
    ClipStamps stamps_;
    bool isLoaded_ = false;
    bool wasReadWhole_ = false; ///< the document on disk, at start
    bool saveScheduled_ = false;
    std::uint64_t revision_ = 0;       ///< counts the changes
    std::uint64_t savedRevision_ = 0;  ///< the newest on disk
    std::uint64_t savingRevision_ = 0; ///< the newest that was given to be saved
    int saving_ = 0;                   ///< saves under way
    /// `savingRevision_` for the saving queue: an older one that has not been written is let go.
    std::shared_ptr<std::atomic<std::uint64_t>> newest_ =
        std::make_shared<std::atomic<std::uint64_t>>(0);
    std::uint64_t clearings_ = 0;
    std::vector<std::optional<Seconds>> earlyClearings_; ///< asked for before it was loaded
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
