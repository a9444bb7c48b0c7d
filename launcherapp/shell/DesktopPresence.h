#pragma once

#include "launcherapp/panel/view/PanelViewServices.h"
#include "launcherapp/shell/modes/PanelModes.h"

#include <functional>
#include <memory>
#include <string>

namespace tessarine {

class Diagnostics;
class MainQueue;
class PanelController;
class WindowList;
class WorkQueues;

/// What of the program is on the desktop: the panel, the keys that summon it, the tray icon and
/// the name on the session bus. Made where Qt has windows. Main thread only.
class DesktopPresence {
public:
    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        Diagnostics& diagnostics;
        WindowList& windows;
        PanelViewServices view;
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    explicit DesktopPresence(Services services);
    ~DesktopPresence();
    DesktopPresence(const DesktopPresence&) = delete;
    DesktopPresence& operator=(const DesktopPresence&) = delete;

    PanelController& panel();

    /// The tray icon, the panel's warm passes, and the name on the session bus.
    void start();

    /// Takes the chords. Only now can the panel be summoned.
    void registerHotkey();

    /// The state of the panel's and the clipboard's chord, each in a line.
    std::string hotkeyStatus() const;
    std::string clipboardStatus() const;

    /// Says to a user who just started the program how to bring it up.
    std::string invitation() const;

private:
    class Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
