#pragma once

#include "tests/desktop/ProgramOnWayland.h"
#include "tests/desktop/mutter/MutterKeyboard.h"

#include <linux/input-event-codes.h>

#include <string>

namespace tessarine {

/// The real program under GNOME's compositor, called over the session bus as a key of GNOME's
/// settings calls it.
class MutterDesktop : public ProgramOnWayland {
protected:
    MutterDesktop();
    ~MutterDesktop() override;

    /// Waits until the panel is up and has the keyboard. Throws std::runtime_error when it doesn't
    /// come.
    void summon(const std::string& action = "toggle");
    bool goesAway(int times) const;

    /// A real terminal whose program writes each line it gets to a file. Returns when it has the
    /// keyboard.
    void openTerminal();
    /// Whether the terminal gets what is typed now.
    bool terminalGets(const std::string& line);

    MutterKeyboard keyboard;

private:
    std::string lines() const;
};

} // namespace tessarine
