#pragma once

#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>

class QSocketNotifier;

namespace tessarine {

/// What goes on around the panel on an X11 display while it is up: presses beside it, other windows
/// that become active or rise above it. Between `end` and `begin` it tells of the compositor alone
/// and costs no wake-up. Main thread only, with Qt's event loop.
class X11PanelWatch {
public:
    struct Events {
        /// A button or a finger went down outside of the panel.
        std::function<void()> pressedOutside;
        /// The window manager made another window the active one.
        std::function<void()> otherActivated;
        /// A window came to stand above the panel.
        std::function<void()> overlapped;
        /// An unmanaged window came to hide all of the panel: a screen lock, a selection of a
        /// piece of the screen. It wants the keyboard that the panel holds.
        std::function<void()> covered;
        /// A compositor came or went.
        std::function<void()> mixesChanged;
    };

    X11PanelWatch(X11Connection& display, Events events);
    ~X11PanelWatch();
    X11PanelWatch(const X11PanelWatch&) = delete;
    X11PanelWatch& operator=(const X11PanelWatch&) = delete;

    /// The panel's window is up from now on; without waiting for anything.
    void begin(X11Connection::Window panel);
    void end();

    bool mixes() const { return mixes_; }

    /// Whoever waited for an answer on the connection calls this afterwards: events that came in
    /// meanwhile are off the socket, so nothing would wake the loop for them.
    void takeQueuedEvents();

private:
    struct Noted;

    void prepareInput();
    void watchCompositor();
    unsigned select(X11Connection::Window window, std::uint32_t mask);
    void selectPresses(std::uint32_t mask);
    void readEvents();
    void note(const void* event);
    void act();
    unsigned askActive() const;
    X11Connection::Window answered(unsigned question) const;
    bool isPointerInside();
    void lookAbove(const std::set<X11Connection::Window>& moved);
    bool compositorOwns() const;

    X11Connection& display_;
    Events events_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::unique_ptr<Noted> noted_;
    int inputOpcode_ = -1;    ///< of XInput 2.2; below zero without it
    int selectionEvent_ = -1; ///< of XFixes; below zero without it
    X11Connection::Atom activeAtom_ = 0;
    X11Connection::Atom compositorAtom_ = 0;
    bool mixes_ = false;
    X11Connection::Window panel_ = 0; ///< none while nothing is watched
    unsigned beganAt_ = 0;            ///< events of earlier requests are an earlier time's
    X11Connection::Window activeBefore_ = 0;
    std::optional<bool> pointerInside_; ///< by the crossings that were told; nothing before any
    // Asked at `begin`, and not answered yet.
    std::optional<unsigned> activeQuestion_;
    std::optional<unsigned> pointerQuestion_;
};

} // namespace tessarine
