#pragma once

#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WindowList.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarine {

class ClipboardStore;
class ClipboardWatcher;
class ClipPictures;
class Diagnostics;
class KeyInjector;
class Prefs;
class WorkQueues;

/// Puts clippings back: onto the pasteboard, and by keys into the application that the user came
/// from. Main thread only; pictures are read off it.
class ClipboardPaster {
public:
    // By trial: what an application takes until the field that had the keyboard has it again.
    static constexpr Seconds alreadyInFront{0.03};
    static constexpr Seconds settling{0.05}; ///< of an application that came forward
    /// Longer than a desktop takes to bring a window forward, and short enough that keys which
    /// come after it would surprise.
    static constexpr Seconds longestFront{0.8};
    /// What the injector takes at the most, in bytes: longer texts aren't even counted.
    static constexpr std::size_t longestTyped = std::size_t{256} << 10;

    /// What is known of a window's application beside the window.
    struct Target {
        std::optional<std::string> name; ///< nothing for one that isn't installed
        bool isTerminal = false;
    };

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        Prefs& prefs;
        Diagnostics& diagnostics;
        WindowList& windows;
        KeyInjector& keys;
        ClipboardStore& store;
        ClipboardWatcher& watcher;
        std::shared_ptr<const ClipPictures> pictures;
        std::function<Target(const AppWindow& window)> target;
    };

    explicit ClipboardPaster(Services services);
    ~ClipboardPaster();
    ClipboardPaster(const ClipboardPaster&) = delete;
    ClipboardPaster& operator=(const ClipboardPaster&) = delete;

    /// Copies the clipping and pastes it into the window that was in front, once the pasteboard
    /// offers it. True when keys are expected to follow; false when it is copied only, or not at
    /// all. What happens is logged, with the reason where no keys are sent. Without a
    /// `previousApp`, or with one that is closed, it is copied only.
    bool paste(const ClipboardEntry& entry, const std::optional<AppWindow>& previousApp);

    /// Puts it back on the pasteboard as if it had just been copied again.
    void copyToTop(const ClipboardEntry& entry);

    /// Types the text there, key by key. True when that was begun; false when there is nothing to
    /// type, too much of it, or nowhere to type it.
    bool typeIntoPreviousApp(const std::string& text, const std::optional<AppWindow>& previousApp);

private:
    struct Fronting;

    enum class Came { yes, no };

    void put(const ClipboardEntry& entry, std::function<void(std::uint64_t count)> then);
    void pictureUnavailable(bool isTooLarge, bool needsFetch);
    bool isOpen(const std::optional<AppWindow>& window) const;
    std::optional<AppWindow> listed(const AppWindow& window) const;
    bool isInFront(const AppWindow& window) const;
    std::optional<std::string> obstacle(const std::optional<AppWindow>& previousApp) const;
    void pasteInto(const std::optional<AppWindow>& previousApp,
                   const std::string& id,
                   std::uint64_t count);
    void sendPaste(const Target& target, const std::string& id, std::uint64_t count);
    void type(const std::string& text, const std::string& name);
    void front(const AppWindow& window, std::function<void(Came came)> then);
    void endFronting(const std::shared_ptr<Fronting>& fronting, Came came, Seconds pause);

    Services services_;
    std::uint64_t latestPut_ = 0;
    std::shared_ptr<Fronting> fronting_; ///< the one under way; null without one
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
