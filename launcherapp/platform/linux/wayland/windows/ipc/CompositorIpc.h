#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/WindowControl.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/WindowScene.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>

namespace tessarine {

/// A compositor's own interface for other programs, beside the protocols of Wayland: it tells all
/// windows with their processes and places, and takes orders about them. Main thread only, with
/// Qt's event loop.
class CompositorIpc {
public:
    using Clock = std::chrono::steady_clock;

    /// Longest wait for an answer that somebody waits for: one takes a millisecond mostly. After
    /// one that didn't come nobody waits any more until it has.
    static constexpr auto patience = WindowControl::longestRestore;

    virtual ~CompositorIpc() = default;

    /// Whether it can be asked, and if not, why. Waits for nothing.
    virtual Ability ability() = 0;

    /// False once the connection has been found lost, which it stays.
    virtual bool isConnected() const = 0;

    /// Asks, and waits at most `patience`; nothing when it doesn't answer, or says what can't be
    /// read. `ability` tells either.
    virtual std::optional<WindowScene> scene() = 0;

    /// Calls `told` with what each change has led to, until this goes: from the event loop, or
    /// while anything here is called. A lost connection is told as a scene without anything, once,
    /// and so is what can't be read. To be called once.
    virtual void follow(std::function<void(WindowScene scene)> told) = 0;

    /// Takes what has been told already, and calls `told` of `follow` with it. Waits for nothing.
    virtual void takeWhatCame() = 0;

    /// Orders; a window that has gone is no error. `activate` shows one that was put away.
    virtual void activate(std::uint64_t window) = 0;
    virtual void unhide(const WindowScene::Window& window) = 0;
    /// Neither full-screen nor put away nor tiled, which it is when the order has been answered.
    /// Waits until the deadline at most.
    virtual void makeOrdinary(const WindowScene::Window& window, Clock::time_point deadline) = 0;
    /// Gives an ordinary window that frame, as far as it suits the window.
    virtual void place(const WindowScene::Window& window, const Rectangle& frame) = 0;
    virtual void close(std::uint64_t window) = 0;
};

} // namespace tessarine
