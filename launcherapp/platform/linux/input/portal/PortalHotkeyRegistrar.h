#pragma once

#include "launcherapp/platform/HotkeyRegistrar.h"

#include <memory>
#include <string>

namespace tessarine {

class MainQueue;

/// Chords by the desktop portal's global shortcuts, for desktops where programs can't take keys
/// themselves. The desktop asks its user, and may give other keys than those wished for. All that
/// is asked for within one turn of the event loop, or the first 0.3 seconds, is one question.
///
/// A session's shortcuts are bound once and can't grow, so what is asked for or given back later
/// makes another session with the whole set. The old one is closed before: where two of a program
/// have a shortcut of one name, desktops refuse the second, or let the end of the first take the
/// key from both; and a session with the new ones alone would be taken for the whole set by those
/// that remember a program's shortcuts. So all keys are without effect from the closing to the
/// answer: a few round trips, as the desktop knows by their names those that it has given before,
/// and as long as its user thinks where it asks about a new one. When that is declined or fails,
/// what was granted before is bound again.
///
/// A wish that the desktop could not grant is kept; it is asked again when the portal comes back,
/// and after a failure a minute later, then at ever longer intervals up to an hour. What the portal
/// refuses is asked again by a repeated `grab` alone, at the same intervals at most; what its user
/// has declined only along with a new wish. Main thread only, with Qt's event loop.
class PortalHotkeyRegistrar : public HotkeyRegistrar {
public:
    /// `applicationID` is the name of the program's desktop entry, by which the desktop remembers
    /// the shortcuts. Waits for the session bus's greeting, and for nothing else.
    PortalHotkeyRegistrar(MainQueue& queue, std::string applicationID);
    ~PortalHotkeyRegistrar() override;
    PortalHotkeyRegistrar(const PortalHotkeyRegistrar&) = delete;
    PortalHotkeyRegistrar& operator=(const PortalHotkeyRegistrar&) = delete;

    void setEvents(Events events) override;

    bool takesNoStandIns() const override { return true; }

    void describe(std::uint32_t id, const HotkeyPurpose& purpose) override;
    HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) override;
    void release(std::uint32_t id) override;

    /// Nothing: what keys mean is the compositor's knowledge, told to the window that has the
    /// keyboard.
    std::optional<HotkeyBinding> chord(std::uint32_t key, std::uint32_t state) const override;

private:
    class Wishes;
    std::shared_ptr<Wishes> wishes_; ///< shared with what is posted
};

} // namespace tessarine
