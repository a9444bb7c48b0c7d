#pragma once

#include "launcherapp/clipboard/ClipExamination.h"
#include "launcherapp/clipboard/ClipSkips.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/Subscription.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class ClipboardStore;
class ClipGroupsRuntime;
class ClipPictures;
class Diagnostics;
class Prefs;
class WorkQueues;

/// Turns changes of the pasteboard into clippings: looks twice a second whether anything changed,
/// asks what it is before any of it, and reads only what may be kept. Main thread only; what takes
/// time happens off it.
class ClipboardWatcher {
public:
    static constexpr Seconds pollInterval{0.5};
    static constexpr Seconds pollTolerance{0.2};
    static constexpr Seconds pruneInterval{3600};
    static constexpr Seconds pruneTolerance{600};
    /// Before what an application took along at its end is put back: a program that saves the
    /// pasteboard for others may do it first.
    static constexpr Seconds restorePause{0.1};
    /// The same where only the end of the application tells that it was no emptying on purpose: it
    /// leaves the display a little before it ends.
    static constexpr Seconds endingPause{0.5};
    /// Before what was written is given up: somebody waits for it to be pasted.
    static constexpr Seconds longestWrite{1};
    /// Of pictures that are being written; while there are more, no other copy is looked at.
    static constexpr std::size_t mostKeptAtOnce = std::size_t{64} << 20;

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        Prefs& prefs;
        Diagnostics& diagnostics;
        Pasteboard& board;
        ClipboardStore& store;
        ClipGroupsRuntime& groups;
        std::shared_ptr<const ClipPictures> pictures;
        std::function<ClipSource()> front;
        /// Whether the application that was in front has ended since; false when it isn't known.
        std::function<bool(const ClipSource& source)> hasEnded;
        /// Whether copies of this application are the companion's own and are to be left out; empty
        /// where no companion is installed.
        std::function<bool(const std::string& bundleID)> shouldSkipQuillet;
    };

    /// Copies that were not kept in this run; no entry for a reason that there never was.
    using Skipped = std::map<ClipSkip::Reason, std::int64_t>;

    explicit ClipboardWatcher(Services services);
    ~ClipboardWatcher();
    ClipboardWatcher(const ClipboardWatcher&) = delete;
    ClipboardWatcher& operator=(const ClipboardWatcher&) = delete;

    /// Loads the history, prunes it now and each hour, and watches unless the setting is off.
    /// Nothing that was copied before is recorded. From then on it follows the setting.
    void start();

    /// Looks at nothing any more. A picture that is being written is not recorded; `start` may
    /// follow.
    void stop();

    bool isWatching() const { return timer_.active(); }

    const Skipped& skipped() const { return skipped_; }

    /// Whether anything can be put on the pasteboard.
    Ability pasteboard() const { return services_.board.ability(); }

    /// Puts this on the pasteboard as the program's own: it isn't recorded, nor is the next change,
    /// as programs copy back what they were given. Gives the count of the change; nothing where
    /// nothing can be put there.
    std::optional<std::uint64_t> writeOwn(PasteboardContent content);

    /// Calls `done` once, later, with whether other programs get what was written with that count:
    /// not when the pasteboard takes longer than `longestWrite`, or holds something else by then.
    void whenOffered(std::uint64_t count, std::function<void(bool isOffered)> done);

    /// Whether nothing was put on the pasteboard since.
    bool isLatest(std::uint64_t count) const { return services_.board.changeCount() == count; }

    /// Calls `changed` after each change of the counters.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    /// The copy that was recorded last.
    struct Recorded {
        std::uint64_t count = 0; ///< of the change that brought it
        std::string id;
        ClipSource source; ///< in front at that; unknown for what a keeper of copies put there
    };

    void begin();
    void noteWitness();
    void watch();
    void settingChanged(std::string_view key);
    void abilityChanged();
    void poll();
    ClipSkips::Circumstances circumstancesOf(const ClipSource& front) const;
    void examine(ClipExamination::Change change);
    void take(ClipExamination::Result&& result);
    void takePicture(ClipExamination::Picture picture);
    void examineWithout(ClipExamination::Change change, std::uint64_t clearings);
    void skip(const ClipSkip& skip);
    void record(ClipboardEntry entry, const ClipExamination::Change& change);
    void abandoned(std::uint64_t count);
    void restoreIfAbandoned();
    void restore(std::uint64_t count);

    Services services_;
    Skipped skipped_;
    std::uint64_t lastCount_ = 0;
    bool ignoreNextChange_ = false;
    std::unique_ptr<ClipExamination> examination_; ///< null when nothing is looked at
    std::uint64_t clearings_ = 0;                  ///< of the history, when that was noticed
    std::size_t keptBytes_ = 0;                    ///< of pictures that are being written
    std::optional<Recorded> lastRecorded_;
    std::optional<JudgedCopy> lastJudged_;
    std::optional<std::uint64_t> abandoned_; ///< the last count whose owner ended
    Subscription timer_;
    Subscription pruneTimer_;
    Subscription settings_;
    Subscription abandonments_;
    Subscription abilities_;
    Observers<> changes_;
    std::shared_ptr<char> run_; ///< what is under way ends with it; null while stopped
};

} // namespace tessarine
