#include "launcherapp/clipboard/ClipboardPaster.h"

#include "LauncherCore/text/Counted.h"
#include "LauncherCore/text/Graphemes.h"
#include "launcherapp/clipboard/ClipContents.h"
#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/clipboard/ClipboardWatcher.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view otherApp = "another app"; ///< whose name isn't known
constexpr std::string_view notOffered = "paste: no keys sent, the clipping is not on the clipboard";

} // namespace

/// A window on its way to the front. Ends once, with its success; a newer one ends it silently.
struct ClipboardPaster::Fronting {
    std::function<void(Came came)> then;
    Subscription activations;
};

ClipboardPaster::ClipboardPaster(Services services) : services_(std::move(services)) {}

ClipboardPaster::~ClipboardPaster() = default;

bool ClipboardPaster::paste(const ClipboardEntry& entry,
                            const std::optional<AppWindow>& previousApp) {
    requireMainThread(services_.queue);
    if (services_.prefs.clipMoveToTopOnUse())
        services_.store.touch(entry.id);
    // Asked before a picture is read, so that the caller knows at once what to expect.
    const bool isExpected = services_.watcher.pasteboard().available && !obstacle(previousApp) &&
                            (entry.kind != ClipKind::image || entry.imageFile || entry.fullFile);
    put(entry, [this, id = entry.id, previousApp](std::uint64_t count) {
        pasteInto(previousApp, id, count);
    });
    return isExpected;
}

void ClipboardPaster::copyToTop(const ClipboardEntry& entry) {
    requireMainThread(services_.queue);
    put(entry, [this, id = entry.id](std::uint64_t) {
        services_.store.bump(id);
        services_.diagnostics.log("clipboard: copied an existing entry back to the top");
    });
}

bool ClipboardPaster::typeIntoPreviousApp(const std::string& text,
                                          const std::optional<AppWindow>& previousApp) {
    requireMainThread(services_.queue);
    if (text.empty())
        return false;
    if (text.size() > longestTyped) {
        services_.diagnostics.log(
            fmt::format("type: nothing sent, {} bytes are too many to be typed", text.size()));
        return false;
    }
    if (!isOpen(previousApp)) {
        services_.diagnostics.log("type: no previous app to type into");
        return false;
    }
    if (const auto ability = services_.keys.ability(); !ability.available) {
        services_.diagnostics.log("type: nothing sent, Accessibility not granted: " +
                                  ability.reason);
        return false;
    }
    const auto name = services_.target(*previousApp).name;
    front(*previousApp, [this, text, name](Came came) {
        if (came == Came::yes)
            return type(text, name.value_or(std::string(otherApp)));
        services_.diagnostics.log(fmt::format("type: {} never came forward", name.value_or("app")));
    });
    return true;
}

void ClipboardPaster::type(const std::string& text, const std::string& name) {
    const auto count = Graphemes::count(text);
    services_.keys.type(text, [this, alive = std::weak_ptr(alive_), count, name](bool isTyped) {
        if (alive.expired())
            return;
        services_.diagnostics.log(
            isTyped ? fmt::format("type: sent {} to {}", counted(count, "character"), name)
                    : fmt::format("type: the text could not be sent whole to {}", name));
    });
}

/// Puts the clipping on the pasteboard and goes on with `then`; not when its picture is gone.
void ClipboardPaster::put(const ClipboardEntry& entry, std::function<void(std::uint64_t)> then) {
    if (const auto ability = services_.watcher.pasteboard(); !ability.available) {
        services_.diagnostics.log("clipboard: nothing was copied, " + ability.reason);
        return;
    }
    ClipContents::make(entry,
                       services_.work,
                       services_.pictures,
                       [this,
                        alive = std::weak_ptr(alive_),
                        latest = ++latestPut_,
                        isTooLarge = entry.blobTooLarge.value_or(false),
                        needsFetch = entry.needsFetch(),
                        then = std::move(then)](std::optional<PasteboardContent> content) {
                           if (alive.expired() || latest != latestPut_)
                               return; // what was asked for since is what is wanted
                           if (!content)
                               return pictureUnavailable(isTooLarge, needsFetch);
                           if (const auto count = services_.watcher.writeOwn(*std::move(content)))
                               return then(*count);
                           services_.diagnostics.log("clipboard: nothing was copied, " +
                                                     services_.watcher.pasteboard().reason);
                       });
}

void ClipboardPaster::pictureUnavailable(bool isTooLarge, bool needsFetch) {
    if (isTooLarge)
        services_.diagnostics.log("clipboard: that picture is larger than one object may be, so it "
                                  "stayed on the Mac it was copied on");
    else if (needsFetch)
        services_.diagnostics.log("clipboard: that picture lies on another computer, and syncing "
                                  "is not built yet; nothing was pasted");
    else
        services_.diagnostics.log("clipboard: that picture's file is missing; nothing was pasted");
}

bool ClipboardPaster::isOpen(const std::optional<AppWindow>& window) const {
    return window && listed(*window).has_value();
}

/// The window as it is now; nothing when it is closed, or where the desktop doesn't tell.
std::optional<AppWindow> ClipboardPaster::listed(const AppWindow& window) const {
    const auto windows = services_.windows.windows();
    const auto found = std::ranges::find(windows, window.id, &AppWindow::id);
    return found == windows.end() ? std::nullopt : std::optional(*found);
}

bool ClipboardPaster::isInFront(const AppWindow& window) const {
    const auto active = services_.windows.active();
    return active && active->id == window.id;
}

/// Why a clipping can be copied only, as the log says it; nothing when it can be pasted.
std::optional<std::string>
ClipboardPaster::obstacle(const std::optional<AppWindow>& previousApp) const {
    if (!services_.prefs.clipAutoPaste())
        return "paste: copied only, paste-on-Return is switched off";
    if (const auto ability = services_.keys.ability(); !ability.available)
        return "paste: copied only, Accessibility not granted: " + ability.reason;
    if (!isOpen(previousApp))
        return "paste: copied only, no previous app to paste into";
    return std::nullopt;
}

// The keys make the application ask for what lies on the clipboard. Before the pasteboard offers
// the clipping that is what was copied before it, and may be a secret.
void ClipboardPaster::pasteInto(const std::optional<AppWindow>& previousApp,
                                const std::string& id,
                                std::uint64_t count) {
    if (const auto line = obstacle(previousApp)) {
        services_.diagnostics.log(*line);
        return;
    }
    services_.watcher.whenOffered(
        count,
        [this,
         alive = std::weak_ptr(alive_),
         latest = latestPut_,
         window = *previousApp,
         target = services_.target(*previousApp),
         id,
         count](bool isOffered) {
            if (alive.expired() || latest != latestPut_)
                return;
            if (!isOffered)
                return services_.diagnostics.log(notOffered);
            front(window, [this, target, id, count](Came came) {
                if (came == Came::yes)
                    return sendPaste(target, id, count);
                services_.diagnostics.log(
                    fmt::format("paste: {} never came forward; the text is on the clipboard",
                                target.name.value_or("app")));
            });
        });
}

void ClipboardPaster::sendPaste(const Target& target, const std::string& id, std::uint64_t count) {
    if (!services_.watcher.isLatest(count))
        return services_.diagnostics.log(notOffered);
    const auto name = target.name.value_or(std::string(otherApp));
    const auto chord =
        target.isTerminal ? KeyInjector::PasteChord::terminal : KeyInjector::PasteChord::ordinary;
    if (!services_.keys.paste(chord)) {
        services_.diagnostics.log(fmt::format(
            "paste: the keys could not be sent to {}; the text is on the clipboard", name));
        return;
    }
    services_.store.notePaste(id, name);
    services_.diagnostics.log(fmt::format("paste: posted ⌘V to {}", name));
}

void ClipboardPaster::front(const AppWindow& window, std::function<void(Came came)> then) {
    const auto fronting = std::make_shared<Fronting>();
    fronting->then = std::move(then);
    fronting_ = fronting;
    const auto name = services_.target(window).name.value_or("app");
    if (isInFront(window)) {
        services_.diagnostics.log(fmt::format("paste: {} already frontmost", name));
        return endFronting(fronting, Came::yes, alreadyInFront);
    }
    fronting->activations =
        services_.windows.onActiveChanged([this, window, weak = std::weak_ptr(fronting)] {
            if (const auto under = weak.lock(); under && isInFront(window))
                endFronting(under, Came::yes, settling);
        });
    services_.queue.postAfter(longestFront, [this, window, weak = std::weak_ptr(fronting)] {
        if (const auto under = weak.lock())
            endFronting(under, isInFront(window) ? Came::yes : Came::no, settling);
    });
    if (const auto now = listed(window); now && now->hidden)
        services_.windows.unhide(window.id);
    services_.diagnostics.log(fmt::format("paste: fronting {} via activate()", name));
    services_.windows.activate(window.id);
}

/// The first call decides; a window that came forward gets a moment until its field has the keys.
void ClipboardPaster::endFronting(const std::shared_ptr<Fronting>& fronting,
                                  Came came,
                                  Seconds pause) {
    const auto then = std::exchange(fronting->then, nullptr);
    fronting->activations.end();
    if (!then)
        return;
    if (came == Came::no) {
        fronting_.reset();
        return then(came);
    }
    services_.queue.postAfter(pause, [this, then, came, weak = std::weak_ptr(fronting)] {
        if (weak.expired())
            return;
        fronting_.reset();
        then(came);
    });
}

} // namespace tessarine
