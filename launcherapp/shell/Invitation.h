#pragma once

#include <optional>
#include <string>

namespace tessarine {

struct DesktopKey;
struct DesktopSurroundings;

/// What a user who just started the program is told: how to bring it up, and what is missing.
/// Pure; any thread.
namespace Invitation {

/// Whether whoever started the program looks at a terminal that it goes down with.
enum class StartedFrom { desktop, terminal };

/// What brings the panel up.
struct Chord {
    enum class State {
        held,
        asked,      ///< the desktop asks its user
        none,       ///< `status` says why
        desktopOwn, ///< none of the program's, but what may be the desktop's own has called it
    };
    State state = State::none;
    std::string keys;   ///< as they stand on the keyboard; empty unless held
    std::string status; ///< of the chord, in words
};

/// `desktopKey` is told where there is no other; nothing where the desktop can have none either.
std::string
withPanel(const Chord& chord, const std::optional<DesktopKey>& desktopKey, StartedFrom startedFrom);

/// The same for a notification of the desktop's, which is shown once: its title and its text.
struct Notice {
    std::string title;
    std::string text;
};

Notice noKeyYet(const Chord& chord, const DesktopKey& desktopKey);

std::string withoutPanel(const DesktopSurroundings& desktop, StartedFrom startedFrom);

/// Why no panel can be shown, for a run in which none can.
std::string missingDisplay(const DesktopSurroundings& desktop);

/// The same for a copy that the session bus has started.
std::string missingToBus(const DesktopSurroundings& desktop);

} // namespace Invitation
} // namespace tessarine
