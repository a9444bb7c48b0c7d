#pragma once

#include "launcherapp/platform/KeyInjector.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/input/typing/TypedText.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace tessarine {

/// Presses keys through a virtual keyboard of a Wayland compositor, on a connection of its own.
/// Whatever the user's keyboard has held or locked counts for nothing meanwhile, and counts again
/// with its next key; nothing has to be let go of.
///
/// The keyboard is plugged in when it is first needed, with a layout of its own, and stays: for
/// each that comes, sway takes the focus from the window that has it and gives it back, which
/// breaks off a paste that the window is still at. Main thread only.
class WaylandKeyInjector : public KeyInjector {
public:
    static constexpr std::size_t longestText = TypedText::longest;

    /// Connects, and waits for the compositor's first answers. `queue` outlives it; there is a Qt
    /// application.
    explicit WaylandKeyInjector(MainQueue& queue);
    ~WaylandKeyInjector() override;
    WaylandKeyInjector(const WaylandKeyInjector&) = delete;
    WaylandKeyInjector& operator=(const WaylandKeyInjector&) = delete;

    /// False where no compositor answers, or it is gone.
    bool isConnected() const;

    /// Missing where the compositor has no virtual keyboards, or no seat at the moment, or is gone.
    /// Where it is gone or was silent, it is looked for again first, at growing intervals:
    /// WaylandConnection's patience at worst.
    Ability ability() const override;

    bool paste(PasteChord chord) override;

    /// Line breaks are Return and tabs Tab; other control characters are left out. One text after
    /// the other.
    void type(const std::string& text, std::function<void(bool typed)> done) override;

private:
    class Typist;
    std::unique_ptr<Typist> typist_;
};

} // namespace tessarine
