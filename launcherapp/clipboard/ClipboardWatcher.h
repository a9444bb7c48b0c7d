#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarine {

class ClipboardStore;
class ClipGroupsRuntime;
class ClipPictures;
class Diagnostics;
class Prefs;
class WorkQueues;

/// The application that was in front at a copy.
struct ClipSource {
    std::optional<std::string> bundleID; ///< its desktop-file id; nothing when it isn't installed
    std::optional<std::string> name;     ///< as the user's language has it
};

/// Turns changes of the pasteboard into clippings: looks twice a second whether anything changed,
/// asks what it is before any of it, and reads only what may be kept. Main thread only; what takes
/// time happens off it.
class ClipboardWatcher {
public:
    static constexpr Seconds pollInterval{0.5};
    static constexpr Seconds pollTolerance{0.2};
    static constexpr Seconds pruneInterval{3600};
    static constexpr Seconds pruneTolerance{600};

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
        /// Whether copies of this application are the companion's own and are to be left out; empty
        /// where no companion is installed.
        std::function<bool(const std::string& bundleID)> shouldSkipQuillet;
    };

    /// Copies that were not kept in this run.
    struct Skipped {
        std::int64_t concealed = 0; ///< for a concealed, transient or auto-generated marker
        std::int64_t remote = 0;    ///< from another device, by a setting
        std::int64_t ignoredApp = 0;
        std::int64_t tooLarge = 0;
        std::int64_t quillet = 0;

        bool operator==(const Skipped&) const = default;
    };

    explicit ClipboardWatcher(Services services);
    ~ClipboardWatcher();
    ClipboardWatcher(const ClipboardWatcher&) = delete;
    ClipboardWatcher& operator=(const ClipboardWatcher&) = delete;

    /// Loads the history, prunes it now and each hour, and watches unless the setting is off.
    /// Nothing that was copied before is recorded. From then on it follows the setting.
    void start();

    void stop();

    bool isWatching() const { return timer_.active(); }

    const Skipped& skipped() const { return skipped_; }

    /// Puts this on the pasteboard as the program's own: it isn't recorded, nor is the next change.
    void writeOwn(PasteboardContent content);

    /// Calls `changed` after each change of the counters.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    Services services_;
    Skipped skipped_;
    std::uint64_t lastCount_ = 0;
    bool ignoreNextChange_ = false;
    Subscription timer_;
    Subscription pruneTimer_;
    Subscription settings_;
    Subscription abandonments_;
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
