#pragma once

#include "tests/desktop/ProgramOnWayland.h"
#include "tests/wayland/TestKeyboard.h"

#include <linux/input-event-codes.h>
#include <nlohmann/json.hpp>

#include <initializer_list>
#include <optional>
#include <string>

namespace tessarine {

/// The real program under a Wayland compositor, driven by the keys of a keyboard of the seat. The
/// compositor's own keys call the program over the session bus, as its users set them up.
class WaylandDesktop : public ProgramOnWayland {
protected:
    WaylandDesktop();
    ~WaylandDesktop() override;

    /// Presses the compositor's key and waits until the panel is up and has the keyboard. Throws
    /// std::runtime_error when it doesn't come.
    void summon(std::initializer_list<std::uint32_t> chord = {KEY_LEFTMETA, KEY_SPACE});
    /// Presses and lets go of each key, one after the other.
    void strike(std::initializer_list<std::uint32_t> keys);
    bool goesAway(int times) const;

    /// What "swaymsg" is told; its answer.
    nlohmann::json sway(const std::string& words) const;
    /// The title of the window that has the keyboard by the compositor's own account.
    std::optional<std::string> focused() const;

    /// A real terminal whose program writes each line it gets to a file.
    void openTerminal();
    void openField();
    bool terminalHas(const std::string& lines) const;
    bool fieldHas(const std::string& text) const;

    TestKeyboard keyboard;

private:
    bool focuses(const std::string& title) const;
};

} // namespace tessarine
