#pragma once

#include "launcherapp/commands/CommandCatalog.h"
#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/commands/JumpRunner.h"
#include "launcherapp/commands/LinkOpener.h"
#include "launcherapp/commands/ListCommands.h"
#include "launcherapp/commands/SystemCommands.h"
#include "launcherapp/commands/WindowManager.h"
#include "launcherapp/platform/SystemEffects.h"
#include "launcherapp/platform/linux/desktop/QtAlerts.h"
#include "launcherapp/shell/CommandWiring.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tessarine {

class AppServices;
class DesktopAppearance;
class Hotkey;
class Pasteboard;

/// The services that make and run commands, over the services that every run has; each refers to
/// those above it. Making them starts none. Main thread only; `App` has the one there is.
class AppCommands {
public:
    /// What commands ask of the panel and of the chords. Both are there only on a display.
    struct Presence {
        std::function<Hotkey*()> hotkey;
        std::function<void(const std::string& query)> showPanel;
    };

    /// `board` outlives it.
    AppCommands(AppServices& made,
                const DesktopAppearance& desktop,
                Pasteboard& board,
                Presence presence);
    AppCommands(const AppCommands&) = delete;
    AppCommands& operator=(const AppCommands&) = delete;

    CommandWiring::Services wiringServices();

    /// Whether all that commands have started is handed over, or done.
    bool isSettled() const {
        return actionsUnderWay_ == 0 && runtime.isSettled() && jumps.isSettled();
    }

    AppServices& services;
    QtAlerts alerts;
    std::unique_ptr<SystemEffects> effects;
    WindowManager windows;
    LinkOpener links;
    CommandRuntime runtime;
    ListCommands lists;
    JumpRunner jumps;
    SystemCommands system;
    CommandHotkeys hotkeys;
    CommandStore store;

private:
    int actionsUnderWay_ = 0;       ///< of the machine's
    std::optional<double> listsOf_; ///< when the commands were loaded whose lists are kept
    /// Before the catalog's: who hears of a change from there finds no list of the old commands.
    Subscription listsAreOld_ = store.onChange([this] {
        if (std::exchange(listsOf_, store.lastLoad()) != store.lastLoad())
            lists.forget();
    });

public:
    CommandCatalog catalog{store, system, hotkeys};
};

} // namespace tessarine
