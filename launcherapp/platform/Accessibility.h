#pragma once

#include "launcherapp/platform/Ability.h"

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

    bool operator==(const AccessibleProgram&) const = default;
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

    bool operator==(const PressAttempt&) const = default;
};

/// Other programs' buttons, through the desktop's accessibility service. Every call may wait for
/// the bus and for the other program, for a few seconds at most: any thread but the main one, one
/// call at a time.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    /// Whether the desktop has the service and lets us use it.
    virtual Ability ability() = 0;

    /// Whether the program tells what it shows: how one is known to run where windows don't say.
    virtual bool runs(const AccessibleProgram& program) = 0;

    /// Has programs tell what they show; some do only when asked. Lasts until the program ends.
    virtual void wake(const AccessibleProgram& program) = 0;

    /// Looks once, depth first, for something in the program's windows that is on screen, can be
    /// pressed and is called `name`, by its name, description or value, and presses it.
    virtual PressAttempt press(const AccessibleProgram& program, std::string_view name) = 0;
};

} // namespace tessarine
