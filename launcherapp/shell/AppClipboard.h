#pragma once

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/clipboard/ClipImages.h"
#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/clipboard/ClipboardPaster.h"
#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/clipboard/ClipboardWatcher.h"
#include "launcherapp/clipboard/groups/ClipFileFacts.h"
#include "launcherapp/clipboard/groups/ClipGroupStore.h"
#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/Pasteboard.h"
#include "launcherapp/shell/ClipboardWiring.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessarine {

class AppServices;

/// The services of the clipboard, over the services that every run has; each refers to those above
/// it. Making them starts none. Main thread only; `App` has the one there is.
class AppClipboard {
public:
    enum class Board {
        ofTheDisplay,
        none, ///< this run has no windows to show, so it leaves the clipboard alone
    };

    AppClipboard(AppServices& made, Board wanted);
    AppClipboard(const AppClipboard&) = delete;
    AppClipboard& operator=(const AppClipboard&) = delete;

    /// What the user copied before, without watching what is copied now.
    void load() {
        store.load([] {});
    }

    /// Copies are watched no longer, and what is still to be saved is.
    void end();

    /// Gives the search model its rows. A demonstration has invented ones.
    void wire();

    /// Where the clipboard takes nothing, a notice of the desktop's and the log say why.
    void copyText(const std::string& text);

    /// The text that lies on the clipboard, for the panel's own field: `got` is called once, later,
    /// unless there is none.
    void readText(std::function<void(std::string text)> got);

    AppServices& services;
    std::unique_ptr<Pasteboard> board;
    std::unique_ptr<KeyInjector> keys;
    ClipFileFacts fileFacts;
    ClipGroupsRuntime runtime;
    std::shared_ptr<const ClipPictures> pictures;
    ClipboardStore store;
    ClipGroupStore groups;
    ClipboardWatcher watcher;
    ClipboardPaster paster;
    ClipImages images;
    std::optional<ClipboardWiring> wiring;
};

} // namespace tessarine
