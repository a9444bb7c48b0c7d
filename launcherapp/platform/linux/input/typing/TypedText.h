#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <cstddef>
#include <string>
#include <string_view>

/// How a text becomes keys, on every display alike. Pure; any thread.
namespace tessarine::TypedText {

/// Takes some seconds to type; a longer text is refused whole, since nobody could stop it.
inline constexpr std::size_t longest = 10000; // characters of Unicode

/// So that a window that is slow with its keys isn't flooded: 3,200 characters a second.
inline constexpr std::size_t charactersPerTurn = 32;
inline constexpr Seconds betweenTurns{0.01};

/// The characters to type, each kind of line break as one line feed; tabs stay, other control
/// characters are left out.
std::u32string characters(std::string_view text);

} // namespace tessarine::TypedText
