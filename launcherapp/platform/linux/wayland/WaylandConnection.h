#pragma once

#include "launcherapp/platform/linux/wayland/WaylandRegistry.h"

#include <chrono>
#include <memory>

struct wl_display;

namespace tessarine {

/// A connection to the Wayland compositor beside Qt's, for what needs no surface. One that can't be
/// made, or is lost, gives nothing from then on. One thread at a time.
class WaylandConnection {
public:
    /// Longest wait for a compositor that stands still, where somebody waits at all.
    static constexpr std::chrono::milliseconds patience{1000};

    /// Connects to the session's compositor and waits until it has told its globals, at most
    /// `patience`.
    explicit WaylandConnection(WaylandRegistry::Events events = {});
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    /// False for one that could not be made, broke, or whose compositor was silent at its making.
    bool answers() const;

    /// Null where none could be made; every proxy made on it goes before this object.
    wl_display* display() const { return display_.get(); }

    /// To wait on. Not to be asked where `display` is null.
    int descriptor() const;

    /// The compositor's globals, kept up as events are dispatched. Not to be asked where `display`
    /// is null.
    const WaylandRegistry& registry() const { return *registry_; }

    /// Reads what has come and calls the listeners, without waiting. False once it is broken.
    bool dispatchWhatCame();

    /// Sends what was asked for, without waiting.
    void flush();

    /// Waits until the compositor has seen all that was asked for and its answers have been
    /// dispatched. False when it doesn't within the limit, or the connection is broken.
    bool roundTrip(std::chrono::milliseconds limit = patience);

private:
    struct Close {
        void operator()(wl_display* display) const;
    };

    std::unique_ptr<wl_display, Close> display_;
    std::unique_ptr<WaylandRegistry> registry_;
    bool answered_ = false;
};

} // namespace tessarine
