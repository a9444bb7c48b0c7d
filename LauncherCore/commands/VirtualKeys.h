#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The keys that chords are made of: numbers as bindings store them, and the names that people
/// write. Pure; any thread.
namespace tessarine::VirtualKeys {

// Those that the program itself speaks of.
inline constexpr std::uint16_t v = 9;
inline constexpr std::uint16_t enter = 36;
inline constexpr std::uint16_t space = 49;
inline constexpr std::uint16_t backspace = 51;
inline constexpr std::uint16_t escape = 53;

/// The key of a name in lower case ("v", "space", "f5"); nothing for an unknown one.
std::optional<std::uint32_t> code(std::string_view name);

/// The name of a key, of two the one that comes first in the table ("return" before "enter");
/// nothing for a key without one.
std::optional<std::string_view> name(std::uint32_t code);

/// The name as it is shown: with a capital at its start ("V", "Space"); "key 200" for a key
/// without one.
std::string label(std::uint32_t code);

/// The name as Linux keyboards have it printed: "Page Up", "Backspace"; else as `label` has it.
std::string printed(std::uint32_t code);

/// F1 to F20, which type nothing and so may be chords by themselves.
bool isFunctionKey(std::uint32_t code);

} // namespace tessarine::VirtualKeys
