#pragma once

#include "launcherapp/platform/Ability.h"

#include <chrono>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

namespace tessarine {

/// A running program as its windows are known by.
struct AccessibleProgram {
    std::set<std::int64_t> processIDs; ///< may be empty where windows don't tell
    /// What it may call itself: its entry's name, its id, its program's file name. They count only
    /// while no process is known.
    std::set<std::string> names;
};

/// What came of looking for a button and pressing it.
struct PressAttempt {
    enum class Outcome {
        pressed,
        notFound, ///< nothing of this name that can be pressed is on screen, perhaps not yet
        refused,  ///< it is there and would not be pressed
    };

    Outcome outcome = Outcome::notFound;
    std::string problem; ///< of a refusal, in the words of who refused; else empty
};

/// Other programs' buttons, through the desktop's accessibility service. Every call may wait for
/// the bus and for the other program, `longestCall` at most: any thread but the main one, one call
/// at a time.
class Accessibility {
public:
    /// A search that meets its bound at its last button, and the answer to that button's press.
    static constexpr std::chrono::milliseconds longestCall{4000};

    /// How programs were before they were woken.
    enum class Before { silent, speaking };

    virtual ~Accessibility() = default;

    /// Whether the desktop has the service and lets us use it.
    virtual Ability ability() = 0;

    /// Whether the program shows a window: how one is known to run where windows aren't told.
    virtual bool runs(const AccessibleProgram& program) = 0;

    /// Has programs tell what they show, those that start from now on too; some do only when asked.
    /// Lasts until this object goes. "speaking" also where nobody could be asked.
    virtual Before wake() = 0;

    /// Looks once, depth first, for something in the program's windows that is on screen, can be
    /// pressed and is called `name`, by its name, description or value, and presses it.
    virtual PressAttempt press(const AccessibleProgram& program, std::string_view name) = 0;
};

} // namespace tessarine
