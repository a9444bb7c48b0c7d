#pragma once

#include "launcherapp/panel/view/PanelViewServices.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/shell/Invitation.h"

#include <functional>
#include <memory>
#include <string>

namespace tessarine {

class Diagnostics;
class Hotkey;
class MainQueue;
class PanelController;
class WindowList;
class ActivationTokens;
class WorkQueues;
struct DesktopSurroundings;

/// What the user sees of the program on the desktop: the panel, the keys that summon it, and the
/// tray icon. Made only where Qt has windows. The functions up to `registerHotkey` make its parts,
/// and are called in this order. Main thread only.
class DesktopPresence {
public:
    struct Services {
        const DesktopSurroundings& desktop; ///< outlives it, as all services do
        MainQueue& queue;
        WorkQueues& work;
        Diagnostics& diagnostics;
        WindowList& windows;
        ActivationTokens& tokens;
        /// The clipboard's text, for the panel's field; `got` is called once, later, or never.
        std::function<void(std::function<void(std::string text)> got)> pasteText;
        std::function<void()> openSettings;
        std::function<void()> quit;
    };

    explicit DesktopPresence(Services services);
    ~DesktopPresence();
    DesktopPresence(const DesktopPresence&) = delete;
    DesktopPresence& operator=(const DesktopPresence&) = delete;

    /// The tray icon.
    void installStatusItem();

    /// The panel, hidden, with the chords it may be summoned by; none is taken yet.
    PanelController& makePanel(PanelViewServices view);

    /// Null before it is made.
    PanelController* panel();

    /// The chords; null before the panel is made.
    Hotkey* hotkey();

    /// Lets the panel keep itself warm.
    void keepWarm();

    /// Hides the panel when the session is locked.
    void watchSessionLock();

    /// Takes the chords. Only now can the panel be summoned.
    void registerHotkey();

    /// Shows the panel; one that is up stays as it is.
    void bringUp();

    /// The states of the chords, each in a line.
    std::string hotkeyStatus() const;
    std::string clipboardStatus() const;
    std::string voiceStatus() const;

    /// The panel's chord, for the invitation.
    Invitation::Chord chord() const;

    /// What the tray says while the program holds no chord.
    struct Keyless {
        std::string keys;   ///< that the desktop itself calls the program by; empty for none
        std::string advice; ///< how to make one, in a line; empty for nothing to say
    };

    void setKeyless(Keyless keyless);

    /// Calls `changed` after each change of a chord's state.
    Subscription onChordChange(std::function<void()> changed);

    /// The panel's key of the desktop's own, or a menu, called over the session bus: counts as a
    /// press of the panel's chord, when the call came.
    void toggle();
    void toggleClipboard();

private:
    class OnScreen;
    class Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace tessarine
