#pragma once

#include "LauncherCore/clipboard/ClipboardHistory.h"
#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class ClipGroupsRuntime;
class Diagnostics;
class Prefs;
class SerialQueue;
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
    /// Of the document that is read at start: 500 texts of the longest kind come close.
    static constexpr std::size_t largestDocument = std::size_t{4} << 30;

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        Prefs& prefs;
        Diagnostics& diagnostics;
        ClipGroupsRuntime& groups;
        std::shared_ptr<const ClipPictures> pictures;
    };

    using FileNames = std::set<std::string, std::less<>>;

    /// Takes all out of the history that isn't pinned, or with an age, only what was copied or used
    /// since then, and gives it. Pure; any thread.
    static std::vector<ClipboardEntry>
    clearing(ClipboardHistory& history, double now, std::optional<Seconds> newerThan);

    /// The picture files of dropped entries that no entry of the history names. Pure; any thread.
    static FileNames unnamedPictures(const ClipboardHistory& history,
                                     const std::vector<ClipboardEntry>& dropped);

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

    /// Files a copy that was kept; what it drops loses its pictures.
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
    void takeLoaded(ClipboardHistory history);
    std::size_t dropPictures(const std::vector<ClipboardEntry>& dropped);
    void dropPictures(FileNames names);
    void picturesAreKept();
    void stampLocal(std::string_view id);
    void noteDeletion(std::string_view id);
    void trimTombstones();
    std::int64_t nextLamport();

    Services services_;
    StateFile file_;
    SerialQueue& pictureQueue_; ///< of all that writes or deletes pictures
    ClipboardHistory history_;
    std::vector<ClipTombstone> tombstones_;
    bool isLoaded_ = false;
    bool saveScheduled_ = false;
    std::uint64_t clearings_ = 0;
    std::vector<std::optional<Seconds>> earlyClearings_; ///< asked for before it was loaded
    int keeping_ = 0;          ///< pictures that are being kept: nothing is deleted meanwhile
    FileNames toDrop_;         ///< after them, unless a clipping names it then
    bool sweepsLater_ = false; ///< after them
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
