#pragma once

#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WindowList.h"

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
    static constexpr Seconds alreadyInFront{0.03};
    static constexpr Seconds settling{0.05}; ///< of an application that came forward
    static constexpr Seconds longestFront{0.8};

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

    /// Copies the clipping and pastes it into the window that was in front. False when it is copied
    /// only, which is logged with the reason. A picture is pasted once it is read.
    bool paste(const ClipboardEntry& entry, const std::optional<AppWindow>& previousApp);

    /// Puts it back on the pasteboard as if it had just been copied again.
    void copyToTop(const ClipboardEntry& entry);

    /// Types the text there, key by key. False when there is nothing to type or nowhere to type it.
    bool typeIntoPreviousApp(const std::string& text, const std::optional<AppWindow>& previousApp);

private:
    struct Fronting;

    void put(const ClipboardEntry& entry, std::function<void()> then);
    void pictureUnavailable(bool isTooLarge, bool needsFetch);
    bool isOpen(const std::optional<AppWindow>& window) const;
    std::optional<AppWindow> listed(const AppWindow& window) const;
    bool isInFront(const AppWindow& window) const;
    std::optional<std::string> obstacle(const std::optional<AppWindow>& previousApp) const;
    void pasteInto(const std::optional<AppWindow>& previousApp, const std::string& id);
    void type(const std::string& text, const std::string& name);
    void front(const AppWindow& window, std::function<void(bool came)> then);
    void endFronting(const std::shared_ptr<Fronting>& fronting, bool came, Seconds pause);

    Services services_;
    std::uint64_t latestPut_ = 0;
    std::shared_ptr<Fronting> fronting_; ///< the one under way; null without one
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
