#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tessarine {

class X11Connection;

/// The names that programs use when they hand something over (ICCCM 2).
struct SelectionAtoms {
    using Atom = std::uint32_t;

    /// Waits for the display.
    explicit SelectionAtoms(const X11Connection& display);

    Atom clipboard;
    Atom targets;
    Atom multiple;
    Atom timestamp;
    Atom saveTargets;
    Atom remove;
    Atom increments;
    Atom atomPairs;
    Atom passwordManagerHint;
    Atom transfer; ///< the property of our own windows that things come in
    Atom moment;   ///< the property that we change to learn the display's time
};

/// The types that an owner's list of targets tells, as the bytes of a property of 32-bit items.
/// Those that are no types but services of the owner are left out, as are repetitions.
std::vector<SelectionAtoms::Atom> offeredTypes(std::span<const char> property,
                                               const SelectionAtoms& atoms);

/// Their names, in one round trip. What the display doesn't know is left out, and names that no
/// type has.
std::vector<std::string> atomNames(const X11Connection& display,
                                   std::span<const SelectionAtoms::Atom> atoms);

} // namespace tessarine
